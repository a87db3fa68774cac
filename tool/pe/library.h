#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Reads libraries in the Portable Executable format of Windows (Microsoft, "PE Format"). Pure: bytes in, value out.
/// Names are the file's bytes: usually ASCII, but a hostile file may contain any.
namespace nPe {

struct tExport {
    std::string name;  ///< empty if exported by number only
    std::uint32_t ordinal = 0;
    std::string forwarder;  ///< "LIBRARY.name" if the export only forwards, otherwise empty
};

struct tImportedSymbol {
    std::string_view name;  ///< empty if imported by number
    std::uint32_t ordinal = 0;
};

/// The functions that are imported from one library. There are many of them, and those that Windows provides are hardly
/// ever asked for, so they share one text.
class tImportedSymbols {
public:
    tImportedSymbols() = default;
    tImportedSymbols(std::initializer_list<tImportedSymbol> symbols) {
        for (const tImportedSymbol& symbol : symbols) add(symbol);
    }

    /// Requires: the name contains no zero, and the number has 16 bits.
    void add(const tImportedSymbol& symbol) {
        text_.append(symbol.name) += '\0';
        if (!symbol.name.empty()) return;
        text_ += static_cast<char>(symbol.ordinal & 0xFF);
        text_ += static_cast<char>(symbol.ordinal >> 8);
    }
    void clear() noexcept { text_.clear(); }
    /// Makes room for a few dozen functions: few libraries import more from another one.
    void reserve() { text_.reserve(768); }
    [[nodiscard]] bool empty() const noexcept { return text_.empty(); }
    /// Returns the functions in their order. Borrows the names from this object.
    [[nodiscard]] std::vector<tImportedSymbol> list() const;

private:
    std::string text_;  ///< of each function its name and a zero; if the name is empty, the number's two bytes follow
};

struct tImport {
    std::string library;   ///< as written in the file, for example "KERNEL32.dll"
    bool delayed = false;  ///< loaded at its first call instead of with the library
    tImportedSymbols symbols;
};

struct tLibrary {
    std::uint16_t machine = 0;  ///< 0x8664 for x86-64
    bool pe32Plus = false;      ///< the optional header's format: 64-bit
    bool isDll = false;
    std::vector<tExport> exports;  ///< those with a name, in the file's order, then the others in the order of numbers
    std::vector<tImport> imports;  ///< in the file's order, the delayed ones last
    bool hasEntryPoint = false;    ///< code of its own that runs when it is loaded, and may refuse that
    bool hasCode = false;          ///< or contains resources only, which the loader maps whatever the processor
    std::uint64_t fileSize = 0;
};

/// Why a file is not a readable library: one phrase, for example "it has no MZ signature".
struct tUnreadable {
    std::string reason;
    /// Whether the loader refuses the file for certain: because of its headers. Damaged tables it may not even notice.
    bool refused = true;
};

inline constexpr std::uint16_t machineX64 = 0x8664;
inline constexpr std::uint16_t machineX86 = 0x014C;
inline constexpr std::uint16_t machineArm64 = 0xAA64;

/// Reads the headers, exports and imports of a file. A file that the loader refuses, or whose tables it could not
/// follow, is unreadable. Never reads outside the bytes, whatever they contain; time and memory are proportional to the
/// bytes. Throws std::bad_alloc.
[[nodiscard]] std::variant<tLibrary, tUnreadable> read(std::span<const std::byte> bytes);

/// Returns the export that the loader finds under this name, or null. It searches as the loader does, by halves, so in
/// a table that is not sorted it may miss a name.
[[nodiscard]] const tExport* findExport(const tLibrary& library, std::string_view name) noexcept;

/// Returns "x86-64", "32-bit x86" or "ARM64", otherwise the number, such as "processor type 0x1C4".
[[nodiscard]] std::string processorName(std::uint16_t machine);

}  // namespace nPe
