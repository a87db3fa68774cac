#include "tool/pe/library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/peFile.h"
#include "tests/unit/tool/peHelpers.h"

namespace nPe {
namespace {

using support::put16;
using support::put32;
using support::tPeFile;
using testing::ElementsAre;
using testing::IsEmpty;

tPeFile pluginFile() {
    tPeFile file;
    file.exports = {{"Alpha", 11, {}}, {"Beta", 10, "OTHER.Gamma"}, {"", 13, {}}, {"", 12, "OTHER.#7"}};
    file.firstOrdinal = 10;
    file.imports = {importOf("delayed.dll", {"Late"}, true),
                    importOf("KERNEL32.dll", {"Sleep", "Beep"}),
                    {"WS2_32.dll", false, {{"", 115}, {"htons", 0}}}};
    return file;
}

void expectPlugin(const tLibrary& library) {
    EXPECT_THAT(textsOf(library.exports), ElementsAre("Alpha#11", "Beta#10 -> OTHER.Gamma", "#12 -> OTHER.#7", "#13"));
    EXPECT_THAT(textsOf(library.imports),
                ElementsAre("KERNEL32.dll: Sleep Beep", "WS2_32.dll: #115 htons", "delayed delayed.dll: Late"));
}

TEST(nPeLibrary, HasExportsAndImportsByNameAndByNumber) {
    const tLibrary library = readable(pluginFile().bytes());
    expectPlugin(library);
    EXPECT_EQ(library.machine, machineX64);
    EXPECT_TRUE(library.pe32Plus);
    EXPECT_TRUE(library.isDll);
}

TEST(nPeLibrary, MayBeFor32Bits) {
    tPeFile file = pluginFile();
    file.machine = machineX86;
    file.pe32Plus = false;
    const tLibrary library = readable(file.bytes());
    expectPlugin(library);
    EXPECT_EQ(library.machine, machineX86);
    EXPECT_FALSE(library.pe32Plus);
}

TEST(nPeLibrary, MayBeForAnotherProcessor) {
    tPeFile file = pluginFile();
    file.machine = machineArm64;
    EXPECT_EQ(readable(file.bytes()).machine, machineArm64);
    file.machine = 0x6264;
    EXPECT_EQ(readable(file.bytes()).machine, 0x6264);
}

TEST(nPeLibrary, IsNoDllIfItIsAnExecutable) {
    tPeFile file = pluginFile();
    file.characteristics = 0x0022;
    const tLibrary library = readable(file.bytes());
    EXPECT_FALSE(library.isDll);
    expectPlugin(library);
}

TEST(nPeLibrary, MayHaveNoTables) {
    const tLibrary library = readable(tPeFile().bytes());
    EXPECT_THAT(library.exports, IsEmpty());
    EXPECT_THAT(library.imports, IsEmpty());
}

TEST(nPeLibrary, MayHaveFewerDirectoriesThanUsual) {
    tPeFile file = pluginFile();
    std::string bytes = file.bytes();
    put32(bytes, file.directoryCountField(), 13);
    EXPECT_EQ(readable(bytes).imports.size(), 2U);
    put32(bytes, file.directoryCountField(), 1);
    EXPECT_THAT(readable(bytes).imports, IsEmpty());
    EXPECT_EQ(readable(bytes).exports.size(), 4U);
    put32(bytes, file.directoryCountField(), 0);
    EXPECT_THAT(readable(bytes).exports, IsEmpty());
}

TEST(nPeLibrary, MayClaimMoreDirectoriesThanThereAre) {
    tPeFile file = pluginFile();
    std::string bytes = file.bytes();
    put32(bytes, file.directoryCountField(), 0xFFFFFFFF);
    expectPlugin(readable(bytes));
}

TEST(nPeLibrary, MayHaveImportsWithoutALookUpTable) {
    tPeFile file = pluginFile();
    file.withLookupTables = false;
    expectPlugin(readable(file.bytes()));
}

TEST(nPeLibrary, MayHaveDelayedImportsWithAbsoluteAddresses) {
    tPeFile file = pluginFile();
    file.machine = machineX86;
    file.pe32Plus = false;
    file.relativeDelays = false;
    expectPlugin(readable(file.bytes()));
}

TEST(nPeLibrary, MayGiveOneFunctionTwoNames) {
    tPeFile file;
    file.exports = {{"A", 1, {}}, {"B", 1, {}}, {"C", 2, {}}};
    EXPECT_THAT(textsOf(readable(file.bytes()).exports), ElementsAre("A#1", "B#1", "C#2"));
}

TEST(nPeLibrary, MayExportByNumberOnly) {
    tPeFile file;
    file.exports = {{"", 1, {}}, {"", 3, {}}};
    EXPECT_THAT(textsOf(readable(file.bytes()).exports), ElementsAre("#1", "#3"));
}

TEST(nPeLibrary, HasNamesOfAnyBytes) {
    tPeFile file;
    file.exports = named({"\xFF\x01", "größe"});
    file.imports = {importOf("\xC3.dll", {"\x80"})};
    const tLibrary library = readable(file.bytes());
    EXPECT_EQ(library.exports.at(0).name, "\xFF\x01");
    EXPECT_THAT(textsOf(library.imports), ElementsAre("\xC3.dll: \x80"));
}

TEST(nPeLibrary, IsMappedAsItIsIfItIsAlignedToLessThanAPage) {
    tPeFile file;
    std::string bytes = file.bytes();
    put32(bytes, tPeFile::sectionAlignmentField, 0x20);
    // Section headers do not matter then.
    put32(bytes, file.sectionHeader() + 20, 0xFFFFFF00);
    // An import table at the end of the headers, whose symbols are found by offset.
    const auto at = static_cast<std::uint32_t>(tPeFile::sectionBytes - 0x80);
    put32(bytes, file.directory(1), at);
    put32(bytes, at + 12, at + 0x40);
    put32(bytes, at + 16, at + 0x48);
    bytes.replace(at + 0x40, 5, "x.dll");
    put32(bytes, at + 0x48, at + 0x60);
    bytes.replace(at + 0x62, 3, "run");
    EXPECT_THAT(textsOf(readable(bytes).imports), ElementsAre("x.dll: run"));
}

TEST(nPeLibrary, HasZerosWhereASectionIsLargerThanItsBytes) {
    tPeFile file = pluginFile();
    std::string bytes = file.bytes();
    // A table that begins in the zeros is empty.
    put32(bytes, file.sectionHeader() + 8, 0x3000);
    put32(bytes, tPeFile::imageSizeField, 0x4000);
    put32(bytes, file.directory(1), 0x2800);
    put32(bytes, file.directory(13), 0x3FC0);
    EXPECT_THAT(readable(bytes).imports, IsEmpty());
    // A name that reaches the last byte ends there.
    std::fill(bytes.end() - 3, bytes.end(), 'x');
    const auto lastBytes = static_cast<std::uint32_t>(tPeFile::sectionRva + bytes.size() - tPeFile::sectionBytes - 3);
    put32(bytes, file.directory(1), file.importTable);
    put32(bytes, tPeFile::offsetOf(file.importTable) + 12, lastBytes);
    EXPECT_EQ(readable(bytes).imports.at(0).library, "xxx");
}

TEST(nPeLibrary, MayHaveANumberThatBeginsInASectionsLastBytesAndEndsInTheZerosAfterThem) {
    tPeFile file = pluginFile();
    std::string bytes = file.bytes();
    put32(bytes, file.sectionHeader() + 8, 0x3000);
    put32(bytes, tPeFile::imageSizeField, 0x4000);
    // The addresses of names in the file fit in 16 bits; the zero that follows the first ends the list.
    std::uint32_t addresses = 0;
    std::memcpy(&addresses, bytes.data() + tPeFile::offsetOf(file.importTable), sizeof addresses);
    const std::size_t last = bytes.size() - 2;
    bytes.replace(last, 2, bytes, tPeFile::offsetOf(addresses), 2);
    put32(bytes, tPeFile::offsetOf(file.importTable),
          static_cast<std::uint32_t>(tPeFile::sectionRva + last - tPeFile::sectionBytes));
    EXPECT_EQ(textsOf(readable(bytes).imports).at(0), "KERNEL32.dll: Sleep");
}

TEST(nPeLibrary, HasOnlyFunctionsThatANumberOf16BitsReaches) {
    tPeFile file;
    file.exports = {{"", 1, {}}, {"", 0x10000, {}}, {"", 0x10001, {}}};
    EXPECT_THAT(textsOf(readable(file.bytes()).exports), ElementsAre("#1", "#65536"));
}

TEST(nPeLibrary, HasNoExportWhereThereIsNoFunction) {
    tPeFile file;
    file.exports = named({"A", "B", "C"});
    std::string bytes = file.bytes();
    const std::size_t table = tPeFile::offsetOf(file.exportTable);
    const std::size_t functions = table + 40;
    const std::size_t indexes = functions + 16 + 16;
    put32(bytes, functions, 0);    // A's
    put16(bytes, indexes + 2, 3);  // B's index is past the last one
    EXPECT_THAT(textsOf(readable(bytes).exports), ElementsAre("C#3", "#2"));
}

TEST(nPeLibrary, HasAnExportWithAnEmptyNameByNumberOnly) {
    tPeFile file;
    file.exports = named({"A", "B"});
    std::string bytes = file.bytes();
    bytes.at(bytes.find(std::string("A\0", 2), tPeFile::offsetOf(file.exportTable))) = '\0';
    EXPECT_THAT(textsOf(readable(bytes).exports), ElementsAre("B#2", "#1"));
}

TEST(nPeLibrary, ForwardsNothingIfItsExportTableHasNoSize) {
    tPeFile file = pluginFile();
    std::string bytes = file.bytes();
    put32(bytes, file.directory(0) + 4, 0);
    EXPECT_THAT(textsOf(readable(bytes).exports), ElementsAre("Alpha#11", "Beta#10", "#12", "#13"));
}

TEST(nPeLibrary, IsSearchedForANameByHalves) {
    tLibrary library;
    for (int i = 10; i < 99; ++i) library.exports.push_back({std::to_string(i), static_cast<std::uint32_t>(i), {}});
    library.exports.push_back({{}, 5, {}});
    for (int i = 10; i < 99; ++i) {
        const tExport* const found = findExport(library, std::to_string(i));
        ASSERT_NE(found, nullptr) << i;
        EXPECT_EQ(found->ordinal, static_cast<std::uint32_t>(i));
    }
    for (const char* const name : {"", "0", "100", "991", "5", "99"}) EXPECT_EQ(findExport(library, name), nullptr);
    EXPECT_EQ(findExport(tLibrary(), "10"), nullptr);
}

TEST(nPeLibrary, HasNamesInTheOrderOfUnsignedBytes) {
    tLibrary library;
    library.exports = named({"A", "a", "\x80"});
    EXPECT_EQ(findExport(library, "\x80"), &library.exports[2]);
    EXPECT_EQ(findExport(library, "A"), &library.exports.front());
}

TEST(nPeLibrary, DoesNotFindANameInATableThatIsNotSortedIfTheLoaderDoesNot) {
    tLibrary library;
    // The loader begins with the second of four, and goes to the left for what is less.
    library.exports = named({"D", "B", "C", "A"});
    EXPECT_EQ(findExport(library, "B"), &library.exports[1]);
    EXPECT_EQ(findExport(library, "C"), &library.exports[2]);
    EXPECT_EQ(findExport(library, "A"), nullptr);
    EXPECT_EQ(findExport(library, "D"), nullptr);
}

TEST(nPeLibrary, HasAProcessorWithAName) {
    EXPECT_EQ(processorName(machineX64), "x86-64");
    EXPECT_EQ(processorName(machineX86), "32-bit x86");
    EXPECT_EQ(processorName(machineArm64), "ARM64");
    EXPECT_EQ(processorName(0x1C4), "processor type 0x1C4");
}

}  // namespace
}  // namespace nPe
