// Keys "Text Line1", "Text Line2", ... and when they are joined.
#include <gtest/gtest.h>

#include "tests/support/iniFile.h"

namespace {

using nIni::acceptEmptyValues;

TEST(iniParserContinuation, NumberedKeysAreJoinedInTheirOrder) {
    EXPECT_EQ(parsed("[s]\nText Line1=ab\nText Line2=cd\nText Line3=ef\n"), "[s]@1\nText=abcdef@2\n");
    EXPECT_EQ(parsed("[s]\nText Line1=a\nText Line3=b\nText Line2=c\n"), "[s]@1\nText=abc@2\n");
    EXPECT_EQ(parsed("[s]\nText Line1=a\nText Line0=b\nText Line7=c\n"), "[s]@1\nText=abc@2\n");
}

TEST(iniParserContinuation, EverySectionIsJoinedByItself) {
    EXPECT_EQ(parsed("[s]\na Line1=1\n[t]\na Line2=2\nb Line1=3\n[s]\na Line2=4"),
              "[s]@6\na=14@2\n[t]@3\na Line2=2@4\nb=3@5\n");
}

TEST(iniParserContinuation, TheFirstKeysLineAndQuoteAreKept) {
    EXPECT_EQ(parsed("[s]\nT Line1=\"a \"\nT Line2='b'\n"), "[s]@1\nT=a 'b'\"@2\n");
    EXPECT_EQ(parsed("[s]\nT Line1=a\nT Line2=\" b\"\n"), "[s]@1\nT=a b@2\n");
}

TEST(iniParserContinuation, ARunOfOneKeyIsCutToItsStem) {
    EXPECT_EQ(parsed("[s]\na Line1=b\nc=d\n"), "[s]@1\na=b@2\nc=d@3\n");
}

TEST(iniParserContinuation, ANumberOneStartsANewRun) {
    EXPECT_EQ(parsed("[s]\na Line1=1\na Line2=2\nb Line1=3\nb Line2=4\n"), "[s]@1\na=12@2\nb=34@4\n");
}

TEST(iniParserContinuation, TheStemsWithinARunDoNotMatter) {
    EXPECT_EQ(parsed("[s]\na Line1=1\nb Line2=2\n"), "[s]@1\na=12@2\n");
}

TEST(iniParserContinuation, AnotherKeyEndsTheRun) {
    EXPECT_EQ(parsed("[s]\na Line1=1\nb=2\na Line2=3\n"), "[s]@1\na=1@2\nb=2@3\na Line2=3@4\n");
}

TEST(iniParserContinuation, NumbersWithoutANumberOneBeforeThemStay) {
    EXPECT_EQ(parsed("[s]\na Line2=1\na Line0=2\na Line1=3\n"), "[s]@1\na Line2=1@2\na Line0=2@3\na=3@4\n");
}

TEST(iniParserContinuation, LeadingZerosDoNotChangeANumber) {
    EXPECT_EQ(parsed("[s]\na Line01=1\na Line002=2\nb Line0001=3\nb Line00=4\n"), "[s]@1\na=12@2\nb=34@4\n");
}

TEST(iniParserContinuation, NumbersOfAnyLengthAreNumbers) {
    EXPECT_EQ(parsed("[s]\na Line1=1\na Line4294967297=2\na Line18446744073709551617=3\na Line11=4\na Line10=5\n"),
              "[s]@1\na=12345@2\n");
}

TEST(iniParserContinuation, ANameMustEndInLineAndDigits) {
    EXPECT_EQ(
        parsed("[s]\na Line=1\na Line1x=2\naLine1=3\na Line 1=4\na\tLine1=5\nLine1=6\n1=7\na Line-1=8\n"),
        "[s]@1\na Line=1@2\na Line1x=2@3\naLine1=3@4\na Line 1=4@5\na\tLine1=5@6\nLine1=6@7\n1=7@8\na Line-1=8@9\n");
}

TEST(iniParserContinuation, CaseCountsInLine) {
    EXPECT_EQ(parsed("[s]\na line1=1\na LINE1=2\nb LINE2=3\n"), "[s]@1\na line1=2@3\nb LINE2=3@4\n");
}

TEST(iniParserContinuation, TheLastLineInANameCounts) {
    EXPECT_EQ(parsed("[s]\na Line1 Line1=1\na Line7 Line2=2\n"), "[s]@1\na Line1=12@2\n");
}

TEST(iniParserContinuation, ANameThatOnlyNearlyGoesOnWithARunEndsIt) {
    for (const std::string name : {"b2", "2", "Line2", "aLine2", "a Line", "a Line2x", "b LINE2", "a Line-2", "a2"}) {
        EXPECT_EQ(parsed("[s]\na Line1=1\n" + name + "=2\na Line2=3\n"),
                  "[s]@1\na=1@2\n" + name + "=2@3\na Line2=3@4\n");
    }
}

TEST(iniParserContinuation, ANameIsCutRightBeforeTheMark) { EXPECT_EQ(parsed("[s]\na  Line1=1\n"), "[s]@1\na =1@2\n"); }

TEST(iniParserContinuation, AJoinedKeyStaysBesideAPlainOneOfItsName) {
    nIni::tDocument document;
    document.flags = 3;
    ASSERT_EQ(tIniFile("[s]\nText=plain\nText Line1=a\nText Line2=b\n").parseInto(document), 0);
    EXPECT_EQ(describe(document), "[s]@1\nText=plain@2\nText=ab@3\n");
    EXPECT_EQ(findKey(document.sections[0], false, "text")->value, "plain");
}

TEST(iniParserContinuation, RepeatedContinuationKeysAreMergedFirst) {
    EXPECT_EQ(parsed("[s]\nT Line1=a\nT Line2=b\nT LINE2=c\nT Line2=d\nT Line1=e\n"), "[s]@1\nT=ed@6\n");
}

TEST(iniParserContinuation, WithoutMergingRepeatedRunsGiveRepeatedKeys) {
    nIni::tDocument document;
    document.mergeDuplicates = 0;
    ASSERT_EQ(tIniFile("[s]\nT Line1=a\nT Line2=b\nT Line2=c\nT Line1=d\n").parseInto(document), 0);
    EXPECT_EQ(describe(document), "[s]@1\nT=abc@2\nT=d@5\n");
}

TEST(iniParserContinuation, EmptyValuesJoinToAnEmptyValue) {
    EXPECT_EQ(parsed("[s]\na Line1=\na Line2=\n", acceptEmptyValues), "[s]@1\na=@2\n");
}

}  // namespace
