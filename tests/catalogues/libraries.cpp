#include "tests/catalogues/libraries.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>

#include "tests/support/peFile.h"

namespace catalogues {
namespace {

using endtoend::readFile;
using endtoend::tPath;
using endtoend::tStage;
using endtoend::utf8Path;
using endtoend::writeFile;

/// A library for which nobody has written down what is wrong with it.
struct tDamage {
    const wchar_t* file;
    std::string bytes;
};

std::size_t headerOf(const std::string& library) {
    constexpr std::size_t field = 0x3C;
    std::size_t offset = 0;
    for (std::size_t i = 4; i > 0; --i) offset = offset << 8 | static_cast<unsigned char>(library.at(field + i - 1));
    return offset;
}

/// Returns the library with 16 bits of its header replaced.
std::string patched(std::string library, std::size_t offset, std::uint16_t value) {
    const std::size_t place = headerOf(library) + offset;
    library.at(place) = static_cast<char>(value & 0xFF);
    library.at(place + 1) = static_cast<char>(value >> 8);
    return library;
}

constexpr std::size_t machineField = 4;
constexpr std::size_t characteristicsField = 22;
constexpr std::uint16_t machineX86 = 0x14C;
constexpr std::uint16_t machineArm64 = 0xAA64;
constexpr std::uint16_t executableNoLibrary = 0x0022;
constexpr std::uint16_t libraryFor32Bits = 0x2102;

/// Returns a 32-bit library. Windows does not mind the processor of one without code, which contains resources only.
std::string x86Library(bool withCode) {
    support::tPeFile file;
    file.machine = machineX86;
    file.pe32Plus = false;
    file.characteristics = libraryFor32Bits;
    file.hasCode = withCode;
    if (withCode) file.exports.push_back({"InitOk", 1, ""});
    return file.bytes();
}

std::vector<tDamage> damages(const std::string& good) {
    return {{L"truncated.dll", good.substr(0, good.size() / 2)},
            {L"headers.dll", good.substr(0, 0x100)},
            {L"signature.dll", "MZ"},
            {L"empty.dll", ""},
            {L"text.dll", "This is a text.\r\n"},
            {L"x86.dll", x86Library(true)},
            {L"contradictory.dll", patched(good, machineField, machineX86)},
            {L"arm64.dll", patched(good, machineField, machineArm64)}};
}

tPath subfolder(const tStage& stage, const wchar_t* name) {
    tPath folder = stage.libraries() / name;
    std::filesystem::create_directories(folder);
    return folder;
}

/// Adds outer.dll and those of its chain that are named.
tPath addChain(const tStage& stage, const wchar_t* name, std::initializer_list<const wchar_t*> others) {
    const tPath folder = subfolder(stage, name);
    for (const wchar_t* other : others) static_cast<void>(stage.addLibrary(folder / other, other));
    return stage.addLibrary(folder / L"outer.dll", L"outer.dll");
}

std::vector<std::string> makeWorking(const tStage& stage) {
    return {utf8Path(stage.addLibrary(stage.libraries() / L"good.dll")),
            utf8Path(stage.addLibrary(subfolder(stage, L"with blanks") / L"a good one.dll")),
            utf8Path(stage.addLibrary(subfolder(stage, L"\u540D\u524D \u00E9") / L"Gr\u00F6\u00DFe.dll")),
            utf8Path(stage.addLibrary(subfolder(stage, L"dots.in.it") / L"a.b.dll")),
            utf8Path(addChain(stage, L"complete", {L"middle.dll", L"inner.dll"}))};
}

std::vector<std::string> makeBroken(const tStage& stage) {
    std::vector<std::string> paths;
    for (const tDamage& damage : damages(readFile(stage.libraries() / L"good.dll"))) {
        writeFile(stage.libraries() / damage.file, damage.bytes);
        paths.push_back(utf8Path(stage.libraries() / damage.file));
    }
    paths.push_back(utf8Path(stage.libraries() / L"missing.dll"));
    paths.push_back(utf8Path(stage.libraries() / L"missing" / L"missing.dll"));
    paths.push_back(utf8Path(subfolder(stage, L"folder.dll")));
    for (const wchar_t* library : {L"mangled.dll", L"refusing.dll"}) {
        paths.push_back(utf8Path(stage.addLibrary(stage.libraries() / library, library)));
    }
    paths.push_back(utf8Path(addChain(stage, L"lacking", {L"middle.dll"})));
    paths.push_back(utf8Path(addChain(stage, L"alone", {})));
    const tPath elsewhere = addChain(stage, L"elsewhere", {});
    endtoend::rebindImport(elsewhere, "middle.dll", "nearby.dll");
    paths.push_back(utf8Path(elsewhere));
    return paths;
}

std::vector<std::string> makeEntryless(const tStage& stage) {
    const tPath passive = stage.addLibrary(stage.libraries() / L"passive.dll", L"passive.dll");
    const tPath program = stage.libraries() / L"program.dll";
    writeFile(program, patched(readFile(passive), characteristicsField, executableNoLibrary));
    const tPath resources = stage.libraries() / L"resources.dll";
    writeFile(resources, x86Library(false));
    return {utf8Path(passive), utf8Path(program), utf8Path(resources),
            utf8Path(stage.libraries() / L"complete" / L"middle.dll"), R"(C:\windows\system32\version.dll)"};
}

std::string lastName(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

std::string withSlashes(std::string path) {
    std::ranges::replace(path, '\\', '/');
    return path;
}

std::string withLastSlash(std::string path, std::string_view replacement) {
    return path.replace(path.rfind('\\'), 1, replacement);
}

template <class Convert>
std::string withCase(std::string path, Convert convert) {
    std::ranges::transform(path, path.begin(), [convert](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x80 ? static_cast<char>(convert(byte)) : c;
    });
    return path;
}

bool containsName(const std::string& path, const char* name) {
    return withCase(path, [](int c) { return std::tolower(c); }).find(name) != std::string::npos;
}

/// Returns the path with so many more separators before its name that it is as long as some system accepts, or longer.
std::string lengthened(tRandom& random, const std::string& path) {
    const std::size_t length = 257 + random.below(7);
    const std::size_t missing = path.size() < length ? length - path.size() : 0;
    return withLastSlash(path, std::string(missing + 1, '\\'));
}

/// Requires: an absolute path.
std::string writtenDifferently(tRandom& random, const std::string& path) {
    constexpr std::size_t drive = 2;
    switch (random.below(19)) {
        case 0:
        case 1: return withSlashes(path);
        case 2: return withLastSlash(path, "/");
        case 3: return withLastSlash(path, "\\\\");
        case 4: return withLastSlash(path, "\\.\\");
        case 5: return withLastSlash(path, R"(\nowhere\..\)");
        case 6: return withCase(path, [](int c) { return std::toupper(c); });
        case 7: return withCase(path, [](int c) { return std::tolower(c); });
        case 8: return path.substr(0, path.rfind('.'));
        case 9: return path + ".";
        case 10: return path + " ";
        case 11: return R"(\\?\)" + path;
        case 12: return "%SystemDrive%" + path.substr(drive);
        case 13: return path.substr(drive);
        case 14: return "\"" + path;
        case 15: return R"(\??\)" + path;
        case 16: return lengthened(random, path);
        case 17: return R"(\\?\)" + withLastSlash(path, "/");
        default: return lastName(path);
    }
}

}  // namespace

tLibraryPaths makeLibraries(const tStage& stage) {
    tLibraryPaths paths;
    paths.working = makeWorking(stage);
    paths.broken = makeBroken(stage);
    paths.entryless = makeEntryless(stage);
    paths.relative = {"besideTheHost.dll",       "besideTheHost",      "notThere.dll", "below\\besideTheHost.dll",
                      ".\\besideTheHost.dll",    "version.dll",        "good.dll",     "below/besideTheHost.dll",
                      "..\\libraries\\good.dll", "C:besideTheHost.dll"};
    return paths;
}

void furnishExecutableFolder(const tStage& stage, const tPath& folder) {
    std::filesystem::create_directories(folder / L"below");
    static_cast<void>(stage.addLibrary(folder / L"besideTheHost.dll"));
    static_cast<void>(stage.addLibrary(folder / L"below" / L"besideTheHost.dll"));
    static_cast<void>(stage.addLibrary(folder / L"nearby.dll", L"middle.dll"));
    static_cast<void>(stage.addLibrary(folder / L"inner.dll", L"inner.dll"));
}

std::string writtenPath(tRandom& random, const std::string& path) {
    const bool absolute = path.find(":\\") == 1;
    return absolute && random.chance(15) ? writtenDifferently(random, path) : path;
}

bool loadDependsOnCode(const std::string& path) {
    return containsName(path, "refusing") || containsName(path, "outer");
}

bool runsNoCode(const std::string& path) {
    return containsName(path, "passive") || containsName(path, "program") || containsName(path, "resources");
}

}  // namespace catalogues
