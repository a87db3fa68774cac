#include "tool/pe/image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/peFile.h"
#include "tests/unit/tool/peHelpers.h"
#include "tool/pe/library.h"

namespace nPe {
namespace {

using support::put16;
using support::put32;
using support::tPeFile;

constexpr const char* incomplete = "its headers are incomplete";
constexpr const char* outside = "a table or a name is outside its sections";

TEST(nPeImage, FileIsEmpty) { EXPECT_EQ(reasonOf(""), "it is empty"); }

TEST(nPeImage, FileIsOfAnotherKind) {
    EXPECT_EQ(reasonOf("M"), "it has no MZ signature");
    EXPECT_EQ(reasonOf("\x7F"
                       "ELF and more"),
              "it has no MZ signature");
}

TEST(nPeImage, FileEndsAnywhere) {
    const tDamaged whole;
    EXPECT_EQ(reasonOf("MZ"), incomplete);
    // The last sector may be incomplete: the loader fills it with zeros.
    for (std::size_t size = 2; size + 0x200 <= whole.bytes.size(); ++size) {
        EXPECT_NE(reasonOf(whole.bytes.substr(0, size)), "") << size;
    }
    EXPECT_EQ(reasonOf(whole.bytes.substr(0, whole.bytes.size() - 0x200)), "it is truncated");
    EXPECT_EQ(reasonOf(whole.bytes.substr(0, whole.file.sectionHeader() + 23)), incomplete);
}

TEST(nPeImage, PeHeaderIsOutOfTheFile) {
    for (const std::uint32_t offset : {0x10000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        tDamaged library;
        put32(library.bytes, 0x3C, offset);
        EXPECT_EQ(library.reason(), incomplete) << offset;
    }
}

TEST(nPeImage, PeSignatureIsMissing) {
    tDamaged library;
    put32(library.bytes, 0x3C, 0);
    EXPECT_EQ(library.reason(), "it has no PE signature");
}

TEST(nPeImage, HeaderIsOfAnUnknownFormat) {
    tDamaged library;
    put16(library.bytes, tPeFile::optionalHeader, 0x107);
    EXPECT_EQ(library.reason(), "its header is of an unknown format");
}

TEST(nPeImage, HeaderContradictsTheProcessor) {
    for (const std::uint16_t machine : {machineX64, machineArm64}) {
        tPeFile file;
        file.machine = machine;
        file.pe32Plus = false;
        EXPECT_EQ(reasonOf(file.bytes()), "its header is not in the format of its processor");
    }
    tPeFile file;
    file.machine = machineX86;
    EXPECT_EQ(reasonOf(file.bytes()), "its header is not in the format of its processor");
}

TEST(nPeImage, OptionalHeaderIsTooShort) {
    tDamaged library;
    put16(library.bytes, tPeFile::optionalHeaderSizeField, 111);
    EXPECT_EQ(library.reason(), "its header is too short");
    put16(library.bytes, tPeFile::optionalHeaderSizeField, 0);
    EXPECT_EQ(library.reason(), "its header is too short");
}

TEST(nPeImage, DirectoriesBeyondTheOptionalHeaderDoNotCount) {
    tDamaged library;
    put16(library.bytes, tPeFile::sectionCountField, 0);
    put16(library.bytes, tPeFile::optionalHeaderSizeField, 112);
    EXPECT_EQ(library.reason(), "");
    put16(library.bytes, tPeFile::optionalHeaderSizeField, 120);
    EXPECT_EQ(library.reason(), outside);
}

TEST(nPeImage, SectionsAreMoreThanTheLoaderAccepts) {
    tDamaged library;
    put16(library.bytes, tPeFile::sectionCountField, 97);
    EXPECT_EQ(library.reason(), "it has more than 96 sections");
    put16(library.bytes, tPeFile::sectionCountField, 96);
    EXPECT_NE(library.reason(), "it has more than 96 sections");
}

TEST(nPeImage, SectionsOverlap) {
    tDamaged library;
    put16(library.bytes, tPeFile::sectionCountField, 2);
    const std::size_t second = library.file.sectionHeader() + 40;
    put32(library.bytes, second + 8, 0x10);
    put32(library.bytes, second + 12, tPeFile::sectionRva);
    EXPECT_EQ(library.reason(), "its sections overlap");
    put32(library.bytes, second + 12, tPeFile::sectionRva + 0xFFF);
    put32(library.bytes, tPeFile::imageSizeField, 0x10000);
    EXPECT_EQ(library.reason(), "its sections overlap");
    put32(library.bytes, second + 12, tPeFile::sectionRva + 0x1000);
    EXPECT_EQ(library.reason(), "");
}

TEST(nPeImage, SectionOverlapsTheHeaders) {
    tDamaged library;
    put32(library.bytes, library.file.sectionHeader() + 12, 0x200);
    EXPECT_EQ(library.reason(), "its sections overlap");
}

TEST(nPeImage, SectionIsOutOfTheFile) {
    for (const std::uint32_t offset : {0x2000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        tDamaged library;
        put32(library.bytes, library.file.sectionHeader() + 20, offset);
        EXPECT_EQ(library.reason(), "it is truncated") << offset;
    }
}

TEST(nPeImage, SectionEndsAfterTheFile) {
    tDamaged library;
    put32(library.bytes, library.file.sectionHeader() + 8, 0x1000);
    put32(library.bytes, library.file.sectionHeader() + 16, 0x1000);
    EXPECT_EQ(library.reason(), "it is truncated");
}

TEST(nPeImage, SizeOfASectionInTheFileIsIrrelevantBeyondItsSizeInMemory) {
    tDamaged library;
    put32(library.bytes, library.file.sectionHeader() + 8, 1);
    library.bytes.resize(tPeFile::sectionBytes + 0x1000);
    put32(library.bytes, library.file.sectionHeader() + 16, 0xFFFFFFFF);
    EXPECT_EQ(library.reason(), "");
}

TEST(nPeImage, SectionEndsAfterTheImage) {
    for (const std::uint32_t size : {0x1001U, 0xFFFFFFFFU}) {
        tDamaged library;
        put32(library.bytes, library.file.sectionHeader() + 8, size);
        EXPECT_EQ(library.reason(), "a section ends after the image") << size;
    }
    tDamaged library;
    put32(library.bytes, library.file.sectionHeader() + 12, 0xFFFFF000);
    EXPECT_EQ(library.reason(), "a section ends after the image");
}

}  // namespace
}  // namespace nPe
