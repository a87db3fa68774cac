// Tables that the loader could not follow.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/peFile.h"
#include "tests/unit/tool/peHelpers.h"
#include "tool/pe/library.h"

namespace nPe {
namespace {

using support::put32;
using support::tPeFile;

constexpr const char* outside = "a table or a name is outside its sections";
constexpr const char* overlapping = "its tables overlap";

TEST(nPeLibraryMalformed, TablesAreOutOfTheImage) {
    for (const std::size_t number : {0U, 1U, 13U}) {
        // Between headers and section, past the section, and nowhere at all.
        for (const std::uint32_t rva : {0x800U, 0x1FFFU, 0x2000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
            tDamaged library;
            put32(library.bytes, library.file.directory(number), rva);
            EXPECT_EQ(library.reason(), outside) << number << ' ' << rva;
        }
    }
}

TEST(nPeLibraryMalformed, TablesAreCutOffByTheEndOfTheirSection) {
    for (const std::size_t number : {0U, 1U}) {
        tDamaged library;
        put32(library.bytes, library.file.directory(number), 0x1FF0);
        EXPECT_EQ(library.reason(), outside) << number;
    }
}

TEST(nPeLibraryMalformed, AddressInATableIsOutOfTheImage) {
    const tDamaged good;
    const std::size_t exports = good.exportTable();
    const std::size_t imports = good.importTable();
    const std::size_t delayed = good.delayedTable();
    for (const std::size_t field : {exports + 28, exports + 32, exports + 36, exports + 40 + 8, imports, imports + 12,
                                    delayed + 4, delayed + 16}) {
        for (const std::uint32_t rva : {0x2000U, 0x40000000U, 0xFFFFFFFEU}) {
            tDamaged library;
            put32(library.bytes, field, rva);
            EXPECT_EQ(library.reason(), outside) << field << ' ' << rva;
        }
    }
}

TEST(nPeLibraryMalformed, DelayedAddressIsLessThanTheImagesBase) {
    tPeFile file;
    file.imports = {importOf("late.dll", {"Late"}, true)};
    file.relativeDelays = false;
    std::string bytes = file.bytes();
    put32(bytes, tPeFile::offsetOf(file.delayedTable) + 4, 0x10);
    EXPECT_EQ(reasonOf(bytes), outside);
}

TEST(nPeLibraryMalformed, NameHasNoEnd) {
    tDamaged library;
    // The section ends with its page, and so does the name.
    library.bytes.resize(tPeFile::sectionBytes + 0x1000, 'x');
    put32(library.bytes, library.file.sectionHeader() + 8, 0x1000);
    put32(library.bytes, library.file.sectionHeader() + 16, 0x1000);
    put32(library.bytes, library.importTable() + 12, 0x1FFF);
    EXPECT_EQ(library.reason(), "a name has no end");
}

TEST(nPeLibraryMalformed, CountsAreTooLarge) {
    for (const std::size_t field : {20U, 24U}) {  // of functions, of names
        for (const std::uint32_t count : {0x1000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
            tDamaged library;
            put32(library.bytes, library.exportTable() + field, count);
            EXPECT_NE(library.reason(), "") << field << ' ' << count;
        }
    }
}

TEST(nPeLibraryMalformed, TablesDoNotEnd) {
    // Every descriptor is preceded by another one, up to the end of the section.
    tDamaged library;
    library.bytes.resize(tPeFile::sectionBytes + 0x1000);
    put32(library.bytes, library.file.sectionHeader() + 8, 0x1000);
    put32(library.bytes, library.file.sectionHeader() + 16, 0x1000);
    const std::uint32_t name = 0x1000 + 0xFF0;
    for (std::size_t at = library.importTable(); at + 20 <= library.bytes.size(); at += 4) {
        put32(library.bytes, at, name);
    }
    EXPECT_NE(library.reason(), "");
}

/// Returns a file in which as many names begin one after another in one text of so many letters.
std::string withNamesInOneText(std::uint32_t count, std::size_t letters) {
    tPeFile file;
    for (std::uint32_t i = 0; i < count; ++i) file.exports.push_back({"n", i + 1, {}});
    file.exports.push_back({std::string(letters, 'x'), count + 1, {}});
    std::string bytes = file.bytes();
    EXPECT_EQ(readable(bytes).exports.size(), count + 1);
    const std::size_t names = tPeFile::offsetOf(file.exportTable) + 40 + (std::size_t{4} * (count + 1) + 7) / 8 * 8;
    const auto text = static_cast<std::uint32_t>(bytes.find("xxx") - tPeFile::sectionBytes + tPeFile::sectionRva);
    for (std::uint32_t i = 0; i < count; ++i) put32(bytes, names + std::size_t{4} * i, text + i);
    return bytes;
}

TEST(nPeLibraryMalformed, NamesShareTheirBytes) {
    // A thousand names in one text of a hundred thousand letters would take a hundred million.
    EXPECT_EQ(reasonOf(withNamesInOneText(1000, 100'000)), overlapping);
}

TEST(nPeLibraryMalformed, NamesTakeMoreThanSixtyFourMegabytesOfALargeFile) {
    std::string bytes = withNamesInOneText(70, 1'000'000);
    bytes.resize(100'000'000);
    EXPECT_EQ(reasonOf(bytes), overlapping);
}

TEST(nPeLibraryMalformed, ImportsShareTheirSymbols) {
    constexpr std::size_t count = 1000;
    tPeFile file;
    file.imports.assign(count, {"x.dll", false, {{"", 1}}});
    tImport& numbers = file.imports.emplace_back(tImport{"y.dll", false, {}});
    for (int i = 0; i < 10'000; ++i) numbers.symbols.add({"", 2});
    std::string bytes = file.bytes();
    EXPECT_EQ(readable(bytes).imports.size(), count + 1);
    const std::size_t last = tPeFile::offsetOf(file.importTable) + 20 * count;
    for (std::size_t i = 0; i < count; ++i) bytes.replace(last - 20 * (i + 1), 4, bytes, last, 4);
    EXPECT_EQ(reasonOf(bytes), overlapping);
}

}  // namespace
}  // namespace nPe
