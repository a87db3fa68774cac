#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tool/pe/library.h"

namespace support {

/// Builds small libraries in the Portable Executable format: headers, and one section with the tables. A test changes
/// the fields before bytes(), or the bytes afterwards.
struct tPeFile {
    std::uint16_t machine = nPe::machineX64;
    bool pe32Plus = true;
    bool hasCode = true;                     ///< according to its header
    std::uint16_t characteristics = 0x2022;  ///< a DLL
    std::uint32_t firstOrdinal = 1;
    std::vector<nPe::tExport> exports;  ///< ordinals from firstOrdinal on; names are not sorted
    std::vector<nPe::tImport> imports;
    bool relativeDelays = true;    ///< whether delayed imports contain relative addresses, as all newer files do
    bool withLookupTables = true;  ///< whether imports have a table of symbols besides that of addresses

    // Offsets in the file.
    static constexpr std::size_t peHeader = 0x40;
    static constexpr std::size_t machineField = peHeader + 4;
    static constexpr std::size_t sectionCountField = peHeader + 6;
    static constexpr std::size_t optionalHeaderSizeField = peHeader + 20;
    static constexpr std::size_t optionalHeader = peHeader + 24;
    static constexpr std::size_t sectionAlignmentField = optionalHeader + 32;
    static constexpr std::size_t imageSizeField = optionalHeader + 56;
    static constexpr std::size_t headersSizeField = optionalHeader + 60;
    static constexpr std::size_t sectionBytes = 0x400;
    [[nodiscard]] std::size_t directoryCountField() const { return optionalHeader + (pe32Plus ? 108 : 92); }
    [[nodiscard]] std::size_t directory(std::size_t number) const { return directoryCountField() + 4 + 8 * number; }
    /// The section header: size in memory at 8, address at 12, size in the file at 16, offset in the file at 20.
    [[nodiscard]] std::size_t sectionHeader() const { return directory(16); }

    /// A loader that runs several of them needs one base for each, because they cannot be moved.
    std::uint32_t imageBase = 0x400000;
    static constexpr std::uint32_t sectionRva = 0x1000;
    static std::size_t offsetOf(std::uint32_t rva) { return rva - sectionRva + sectionBytes; }

    /// Relative addresses of the tables, set by bytes(); 0 if there is none.
    std::uint32_t exportTable = 0;
    std::uint32_t importTable = 0;
    std::uint32_t delayedTable = 0;

    std::string bytes() {
        section_.clear();
        const std::uint32_t exportEnd = putExports();
        putImports();
        putDelayedImports();
        section_.resize((section_.size() + 0x1FF) / 0x200 * 0x200);
        return headers(exportEnd - exportTable) + section_;
    }

private:
    [[nodiscard]] std::uint32_t end() const { return sectionRva + static_cast<std::uint32_t>(section_.size()); }

    std::uint32_t reserve(std::size_t size) {
        section_.resize((section_.size() + 7) / 8 * 8);
        const std::uint32_t rva = end();
        section_.append(size, '\0');
        return rva;
    }
    std::uint32_t putText(std::string_view text, std::string_view before = {}) {
        const std::uint32_t rva = end();
        section_.append(before).append(text).push_back('\0');
        return rva;
    }
    void set(std::uint32_t rva, std::uint64_t value, std::size_t size);

    std::uint32_t putExports() {
        exportTable = 0;
        if (exports.empty()) return 0;
        const auto named = std::ranges::count_if(exports, [](const auto& entry) { return !entry.name.empty(); });
        std::uint32_t last = firstOrdinal;
        for (const nPe::tExport& entry : exports) last = std::max(last, entry.ordinal);
        const std::uint32_t functionCount = last - firstOrdinal + 1;
        exportTable = reserve(40);
        const std::uint32_t functions = reserve(4 * std::size_t{functionCount});
        const std::uint32_t names = reserve(4 * static_cast<std::size_t>(named));
        const std::uint32_t indexes = reserve(2 * static_cast<std::size_t>(named));
        set(exportTable + 16, firstOrdinal, 4);
        set(exportTable + 20, functionCount, 4);
        set(exportTable + 24, static_cast<std::uint64_t>(named), 4);
        set(exportTable + 28, functions, 4);
        set(exportTable + 32, names, 4);
        set(exportTable + 36, indexes, 4);
        std::uint32_t name = 0;
        for (const nPe::tExport& entry : exports) {
            const std::uint32_t index = entry.ordinal - firstOrdinal;
            // Code is outside the export table; here, before it.
            set(functions + 4 * index, entry.forwarder.empty() ? sectionRva - 1 : putText(entry.forwarder), 4);
            if (entry.name.empty()) continue;
            set(names + 4 * name, putText(entry.name), 4);
            set(indexes + 2 * name++, index, 2);
        }
        return end();
    }

    std::uint32_t putSymbols(const nPe::tImport& import, std::uint64_t base) {
        const std::vector<nPe::tImportedSymbol> symbols = import.symbols.list();
        const std::size_t width = pe32Plus ? 8 : 4;
        const std::uint32_t table = reserve(width * (symbols.size() + 1));
        std::uint32_t at = table;
        for (const nPe::tImportedSymbol& symbol : symbols) {
            const std::uint64_t byOrdinal = std::uint64_t{1} << (8 * width - 1);
            const std::uint64_t value = symbol.name.empty() ? byOrdinal | symbol.ordinal
                                                            : base + putText(symbol.name, std::string_view("\1\0", 2));
            set(at, value, width);
            at += static_cast<std::uint32_t>(width);
        }
        return table;
    }

    void putImports() {
        const auto count = std::ranges::count(imports, false, &nPe::tImport::delayed);
        importTable = count == 0 ? 0 : reserve(20 * (static_cast<std::size_t>(count) + 1));
        std::uint32_t at = importTable;
        for (const nPe::tImport& import : imports) {
            if (import.delayed) continue;
            if (withLookupTables) set(at, putSymbols(import, 0), 4);
            set(at + 12, putText(import.library), 4);
            set(at + 16, putSymbols(import, 0), 4);
            at += 20;
        }
    }

    void putDelayedImports() {
        const auto count = std::ranges::count(imports, true, &nPe::tImport::delayed);
        delayedTable = count == 0 ? 0 : reserve(32 * (static_cast<std::size_t>(count) + 1));
        const std::uint32_t base = relativeDelays ? 0 : imageBase;
        std::uint32_t at = delayedTable;
        for (const nPe::tImport& import : imports) {
            if (!import.delayed) continue;
            set(at, relativeDelays ? 1 : 0, 4);
            set(at + 4, base + putText(import.library), 4);
            set(at + 16, base + putSymbols(import, base), 4);
            at += 32;
        }
    }

    [[nodiscard]] std::string headers(std::uint32_t exportSize) const;

    std::string section_;
};

/// Replaces a little-endian number in the bytes.
inline void put(std::string& bytes, std::size_t offset, std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes.at(offset + i) = static_cast<char>(value >> (8 * i) & 0xFF);
}
inline void put16(std::string& bytes, std::size_t offset, std::uint16_t value) { put(bytes, offset, value, 2); }
inline void put32(std::string& bytes, std::size_t offset, std::uint32_t value) { put(bytes, offset, value, 4); }

inline void tPeFile::set(std::uint32_t rva, std::uint64_t value, std::size_t size) {
    put(section_, rva - sectionRva, value, size);
}

inline std::string tPeFile::headers(std::uint32_t exportSize) const {
    std::string bytes(sectionBytes, '\0');
    const auto size = static_cast<std::uint32_t>(section_.size());
    bytes.replace(0, 2, "MZ");
    put32(bytes, 0x3C, peHeader);
    bytes.replace(peHeader, 2, "PE");
    put16(bytes, machineField, machine);
    put16(bytes, sectionCountField, 1);
    put16(bytes, optionalHeaderSizeField, static_cast<std::uint16_t>(sectionHeader() - optionalHeader));
    put16(bytes, peHeader + 22, characteristics);
    put16(bytes, optionalHeader, pe32Plus ? 0x20B : 0x10B);
    put(bytes, optionalHeader + 4, hasCode ? 0x200 : 0, 4);
    put(bytes, optionalHeader + (pe32Plus ? 24 : 28), imageBase, pe32Plus ? 8 : 4);
    put32(bytes, sectionAlignmentField, 0x1000);
    put32(bytes, sectionAlignmentField + 4, 0x200);  // in the file
    put16(bytes, optionalHeader + 40, 6);            // versions of the system and of the subsystem
    put16(bytes, optionalHeader + 48, 6);
    put16(bytes, optionalHeader + 68, 3);  // console
    put32(bytes, imageSizeField, (sectionRva + size + 0xFFF) / 0x1000 * 0x1000);
    put32(bytes, headersSizeField, sectionBytes);
    put32(bytes, directoryCountField(), 16);
    put32(bytes, directory(0), exportTable);
    put32(bytes, directory(0) + 4, exportSize);
    put32(bytes, directory(1), importTable);
    put32(bytes, directory(13), delayedTable);
    bytes.replace(sectionHeader(), 6, ".rdata");
    put32(bytes, sectionHeader() + 36, 0xC0000040);  // data, readable, writable: the loader writes addresses of imports
    put32(bytes, sectionHeader() + 8, size);
    put32(bytes, sectionHeader() + 12, sectionRva);
    put32(bytes, sectionHeader() + 16, size);
    put32(bytes, sectionHeader() + 20, sectionBytes);
    return bytes;
}

}  // namespace support
