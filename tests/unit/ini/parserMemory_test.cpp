// What is left of a document when memory runs out at any moment of a parse.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/allocations.h"
#include "tests/support/iniFile.h"

namespace {

using allocations::tHowLong;

/// A text for which every allocation of the parser is needed: indexed lists, lines that reach over several chunks,
/// joined keys.
std::string demandingText() {
    std::string text;
    for (int section = 0; section < 10; ++section) {
        text += "[a section with a rather long name " + std::to_string(section) + "]\n";
        for (int key = 0; key < 14; ++key) {
            text += "a key with a rather long name " + std::to_string(key % 11) + "=a value that is no shorter\n";
        }
    }
    text += "Text Line1=" + std::string(3000, 'x') + "\nText Line2=" + std::string(6000, 'y') + "\n";
    return text;
}

void expectRightResultOrOutOfMemory(tHowLong howLong) {
    const tIniFile file(demandingText());
    const std::wstring path = file.widePath();
    nIni::tDocument complete;
    ASSERT_EQ(parseFile(complete, path.c_str()), 0);
    const std::string expected = describe(complete);

    int failures = 0;
    for (int nth = 1;; ++nth) {
        nIni::tDocument document;
        allocations::startFailingNew(nth, howLong);
        const int result = parseFile(document, path.c_str());
        const bool failed = allocations::stopFailingNew();
        if (result == 0) {
            EXPECT_EQ(describe(document), expected) << nth;
        } else {
            EXPECT_EQ(result, -12) << nth;
            EXPECT_TRUE(failed) << nth;
            EXPECT_EQ(document.filePath[0], 0) << nth;
            EXPECT_EQ(document.fileTime, 0U) << nth;
        }
        EXPECT_EQ(parseFile(document, path.c_str()), 0) << "the document is fit for another parse: " << nth;
        EXPECT_EQ(describe(document), expected) << nth;
        if (!failed) break;
        ++failures;
    }
    EXPECT_GE(failures, 90);
}

TEST(iniParserMemory, OneAllocationThatFailsGivesMinus12OrDoesNotMatter) {
    expectRightResultOrOutOfMemory(tHowLong::once);
}

TEST(iniParserMemory, AllocationsThatFailFromOneMomentOnGiveMinus12) {
    expectRightResultOrOutOfMemory(tHowLong::forEver);
}

TEST(iniParserMemory, KeysThatCannotBeJoinedGiveMinus12) {
    const std::string second(1000, 'x');
    const tIniFile file("[s]\nT Line1=short\nT Line2=" + second);
    const std::wstring path = file.widePath();
    bool metAllKeysBeforeTheJoin = false;
    int result = -12;
    for (int nth = 1; result == -12; ++nth) {
        nIni::tDocument document;
        allocations::startFailingNew(nth, tHowLong::once);
        result = parseFile(document, path.c_str());
        allocations::stopFailingNew();
        if (result == -12 && describe(document) == "[s]@1\nT Line1=short@2\nT Line2=" + second + "@3\n") {
            metAllKeysBeforeTheJoin = true;
        }
    }
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(metAllKeysBeforeTheJoin) << "the allocation for the joined value was never the one to fail";
}

TEST(iniParserMemory, NoDocumentIsMadeWithoutMemory) {
    allocations::startFailingNew(1, tHowLong::once);
    const nIni::tDocumentPointer document(nIni::create());
    EXPECT_TRUE(allocations::stopFailingNew());
    EXPECT_EQ(document, nullptr);
}

}  // namespace
