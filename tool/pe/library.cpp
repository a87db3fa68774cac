#include "tool/pe/library.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "tool/pe/image.h"

namespace nPe {
namespace {

/// Numbers of functions have 16 bits wherever a library refers to one, so the others cannot be reached.
constexpr std::uint32_t mostFunctions = 0x10000;

/// The addresses of all exported functions, in the order of their numbers; 0 where there is none.
std::vector<std::uint32_t> readFunctions(tImage& image, std::uint64_t table, std::uint32_t count) {
    count = std::min(count, mostFunctions);
    std::vector<std::uint32_t> functions;
    functions.reserve(count);
    for (std::uint64_t i = 0; i < count; ++i) functions.push_back(image.read32(table + 4 * i));
    return functions;
}

/// The address of a forwarded export is that of a text in the export table instead of code.
std::string readForwarder(tImage& image, std::uint32_t function) {
    const tDirectory table = image.directory(tTable::exports);
    const bool forwarded = function >= table.rva && function - table.rva < table.size;
    return std::string(forwarded ? image.readText(function) : std::string_view());
}

void readExports(tImage& image, tLibrary& library) {
    const std::uint64_t table = image.directory(tTable::exports).rva;
    if (table == 0) return;
    const std::uint32_t firstOrdinal = image.read32(table + 16);
    const std::vector<std::uint32_t> functions =
        readFunctions(image, image.read32(table + 28), image.read32(table + 20));
    const std::uint32_t nameCount = image.read32(table + 24);
    const std::uint64_t names = image.read32(table + 32);
    const std::uint64_t indexes = image.read32(table + 36);
    std::vector<bool> named(functions.size());
    library.exports.reserve(std::min<std::size_t>(nameCount, functions.size()));
    for (std::uint64_t i = 0; i < nameCount; ++i) {
        const std::string_view name = image.readText(image.read32(names + 4 * i));
        const std::uint16_t index = image.read16(indexes + 2 * i);
        if (name.empty() || index >= functions.size() || functions[index] == 0) continue;
        library.exports.push_back({std::string(name), firstOrdinal + index, readForwarder(image, functions[index])});
        named[index] = true;
    }
    for (std::uint32_t i = 0; i < functions.size(); ++i) {
        if (functions[i] == 0 || named[i]) continue;
        library.exports.push_back({{}, firstOrdinal + i, readForwarder(image, functions[i])});
    }
}

/// Reads the functions that are imported from one library, up to a zero. Older files have addresses from `base` on.
/// They replace those in `symbols`, which it returns: a copy takes no more memory than it needs.
const tImportedSymbols& readSymbols(tImage& image, std::uint64_t table, std::uint64_t base, tImportedSymbols& symbols) {
    const std::uint64_t width = image.pe32Plus() ? 8 : 4;
    const std::uint64_t byOrdinal = std::uint64_t{1} << (8 * width - 1);
    symbols.clear();
    for (std::uint64_t at = table;; at += width) {
        const std::uint64_t symbol = image.pe32Plus() ? image.read64(at) : image.read32(at);
        if (symbol == 0) return symbols;
        if ((symbol & byOrdinal) != 0) {
            symbols.add({{}, static_cast<std::uint16_t>(symbol)});
        } else {
            symbols.add({image.readText(symbol - base + 2), 0});  // past the hint
        }
    }
}

void readImports(tImage& image, tLibrary& library) {
    constexpr std::uint64_t descriptorSize = 20;
    std::uint64_t at = image.directory(tTable::imports).rva;
    if (at == 0) return;
    tImportedSymbols functions;
    functions.reserve();
    for (;; at += descriptorSize) {
        const std::uint32_t name = image.read32(at + 12);
        const std::uint32_t addresses = image.read32(at + 16);
        if (name == 0 || addresses == 0) return;
        // Some linkers write the symbols only where the loader replaces them by addresses.
        const std::uint32_t symbols = image.read32(at);
        library.imports.push_back({std::string(image.readText(name)), false,
                                   readSymbols(image, symbols != 0 ? symbols : addresses, 0, functions)});
    }
}

void readDelayedImports(tImage& image, tLibrary& library) {
    constexpr std::uint64_t descriptorSize = 32;
    constexpr std::uint32_t relative = 1;
    std::uint64_t at = image.directory(tTable::delayedImports).rva;
    if (at == 0) return;
    tImportedSymbols functions;
    functions.reserve();
    for (;; at += descriptorSize) {
        const std::uint32_t name = image.read32(at + 4);
        if (name == 0) return;
        const std::uint64_t base = (image.read32(at) & relative) != 0 ? 0 : image.base();
        const std::uint32_t symbols = image.read32(at + 16);
        library.imports.push_back(
            {std::string(image.readText(name - base)), true, readSymbols(image, symbols - base, base, functions)});
    }
}

}  // namespace

std::vector<tImportedSymbol> tImportedSymbols::list() const {
    std::vector<tImportedSymbol> symbols;
    for (std::string_view rest = text_; !rest.empty();) {
        const std::string_view name = rest.substr(0, rest.find('\0'));
        rest.remove_prefix(name.size() + 1);
        symbols.push_back({name, 0});
        if (!name.empty()) continue;
        const auto byte = [rest](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
        symbols.back().ordinal = byte(0) | static_cast<std::uint32_t>(byte(1)) << 8;
        rest.remove_prefix(2);
    }
    return symbols;
}

std::variant<tLibrary, tUnreadable> read(std::span<const std::byte> bytes) {
    bool refused = true;
    try {
        tImage image(bytes);
        refused = false;
        tLibrary library;
        library.fileSize = bytes.size();
        library.machine = image.machine();
        library.pe32Plus = image.pe32Plus();
        library.isDll = image.isDll();
        library.hasEntryPoint = image.hasEntryPoint();
        library.hasCode = image.hasCode();
        readExports(image, library);
        readImports(image, library);
        readDelayedImports(image, library);
        return library;
    } catch (const tUnreadable& unreadable) {
        return tUnreadable{unreadable.reason, refused};
    }
}

const tExport* findExport(const tLibrary& library, std::string_view name) noexcept {
    const auto isNamed = [](const tExport& entry) { return !entry.name.empty(); };
    const auto end = std::ranges::partition_point(library.exports, isNamed);
    const auto named = std::span(library.exports.begin(), end);
    std::size_t first = 0;
    std::size_t last = named.size();
    while (first < last) {
        const std::size_t middle = (first + last - 1) / 2;  // the loader's choice
        const int order = named[middle].name.compare(name);
        if (order == 0) return &named[middle];
        if (order > 0) {
            last = middle;
        } else {
            first = middle + 1;
        }
    }
    return nullptr;
}

std::string processorName(std::uint16_t machine) {
    if (machine == machineX64) return "x86-64";
    if (machine == machineX86) return "32-bit x86";
    if (machine == machineArm64) return "ARM64";
    std::array<char, sizeof "processor type 0xFFFF"> text{};
    std::snprintf(text.data(), text.size(), "processor type 0x%X", static_cast<unsigned>(machine));
    return text.data();
}

}  // namespace nPe
