// Prints what the reader finds in libraries, one line for each fact, for `compare`.
#include <cstdio>
#include <string>
#include <variant>

#include "tool/pe/libraryFile.h"

namespace {

void print(const nPe::tLibrary& library) {
    std::printf("machine %04x %s %s\n", static_cast<unsigned>(library.machine), library.pe32Plus ? "PE32+" : "PE32",
                library.isDll ? "DLL" : "EXE");
    for (const nPe::tExport& entry : library.exports) {
        std::printf("export %u %s -> %s\n", entry.ordinal, entry.name.c_str(), entry.forwarder.c_str());
    }
    for (const nPe::tImport& import : library.imports) {
        std::printf("%s %s\n", import.delayed ? "delayed" : "import", import.library.c_str());
        for (const nPe::tImportedSymbol& symbol : import.symbols.list()) {
            std::printf("symbol %s %u\n", std::string(symbol.name).c_str(), symbol.ordinal);
        }
    }
}

}  // namespace

int main(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
        const std::string path = arguments[i];
        std::printf("file %s\n", path.c_str());
        const auto content = nPe::readFile(path);
        if (const auto* const unreadable = std::get_if<nPe::tUnreadable>(&content)) {
            std::printf("unreadable: %s\n", unreadable->reason.c_str());
        } else {
            print(std::get<nPe::tLibrary>(content));
        }
    }
}
