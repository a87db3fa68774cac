#include "tool/check/descriptionLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"

namespace {

using support::idsOf;
using support::messageOf;
using support::remedyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using std::string_view_literals::operator""sv;

/// Through a file, because the host's parser decides which lines count.
std::vector<tFinding> findingsIn(std::string_view text) {
    const support::tFolder folder;
    return nCheck::readFile(folder.write("a.ini", text)).findings.take("");
}

std::vector<std::string> idsIn(std::string_view text) { return idsOf(findingsIn(text)); }

TEST(descriptionLines, ThatAreWellFormedHaveNoFindings) {
    EXPECT_THAT(idsIn("; comment\n[Service]\nName=A\nDependencies=B\nPath=C:\\a.dll\nRequires=1\nInitialize=I\n"
                      "Stop=S\nCleanup=C\n"),
                IsEmpty());
}

TEST(descriptionLines, MayNotBeBlank) {
    EXPECT_THAT(idsIn("[Service]\n\nName=A\n \t\n"), ElementsAre("2 blank-line", "4 blank-line"));
    EXPECT_THAT(idsIn("[Service]\nName=A\n\n"), ElementsAre("3 blank-line")) << "even at the end";
}

TEST(descriptionLines, WithoutASeparatorAreMalformed) {
    const auto findings = findingsIn("[Service]\nName\n");
    EXPECT_THAT(idsOf(findings), ElementsAre("2 malformed-line"));
    EXPECT_EQ(findings[0].message, "no \"=\": the host rejects the whole file");
}

TEST(descriptionLines, WithAColonAreToldToUseAnEqualsSign) {
    EXPECT_THAT(remedyOf(findingsIn("[Service]\nName: A\n"), "malformed-line"), HasSubstr("\"=\""));
}

TEST(descriptionLines, WithAnotherLanguagesCommentAreToldToUseASemicolon) {
    for (const char* comment : {"# text", "  // text", "#"}) {
        const auto findings = findingsIn("[Service]\nName=A\n" + std::string(comment) + "\n");
        EXPECT_THAT(idsOf(findings), ElementsAre("3 malformed-line"));
        EXPECT_THAT(remedyOf(findings, "malformed-line"), HasSubstr("semicolon")) << comment;
    }
}

TEST(descriptionLines, ThatAreHeadersNeedABracketAndAName) {
    EXPECT_THAT(messageOf(findingsIn("[Service\n"), "malformed-line"), HasSubstr("no \"]\""));
    EXPECT_THAT(messageOf(findingsIn("[ ]\n"), "malformed-line"), HasSubstr("no name"));
}

TEST(descriptionLines, ThatAreKeysNeedAName) {
    EXPECT_THAT(messageOf(findingsIn("[Service]\n=A\n"), "malformed-line"), HasSubstr("nothing precedes"));
}

TEST(descriptionLines, InASectionOfAnotherNameAreIgnored) {
    EXPECT_THAT(idsIn("[Service]\nName=A\n[Other]\nColour=1\n"), ElementsAre("3 unknown-section"));
}

TEST(descriptionLines, InASectionOfASimilarNameAreAMistake) {
    EXPECT_THAT(idsIn("[Services]\nName=A\n"), ElementsAre("1 misspelt-section", "no-service-section"));
}

TEST(descriptionLines, MustContainTheServiceSection) {
    EXPECT_THAT(idsIn(""), ElementsAre("no-service-section"));
    EXPECT_THAT(idsIn("; nothing\n"), ElementsAre("no-service-section"));
    EXPECT_THAT(idsIn("[ sErViCe ] text\n"), IsEmpty());
    EXPECT_THAT(idsIn("\n\n"), ElementsAre("1 blank-line")) << "a rejected file has other troubles";
}

TEST(descriptionLines, BeforeTheFirstSectionAreIgnored) {
    EXPECT_THAT(idsIn("Name=A\nColour=1\n[Service]\n"), ElementsAre("1 key-before-section", "2 key-before-section"));
}

TEST(descriptionLines, WithAnUnknownKeyAreIgnored) {
    EXPECT_THAT(idsIn("[Service]\nColour=red\n"), ElementsAre("2 unknown-key"));
}

TEST(descriptionLines, WithAMisspeltKeyNameTheClosestOne) {
    const auto findings = findingsIn("[Service]\nIntialise=A\n");
    EXPECT_THAT(idsOf(findings), ElementsAre("2 misspelt-key"));
    EXPECT_EQ(findings[0].message, "the host does not know \"Intialise\"; it reads \"Initialize\"");
    EXPECT_EQ(findings[0].remedy, "Write Initialize=, or remove the line.");
}

TEST(descriptionLines, WithARepeatedKeySayWhichOneCounts) {
    const auto findings = findingsIn("[Service]\nPath=a\nName=A\nPATH=b\n[service]\npath=c\n");
    EXPECT_THAT(idsOf(findings), ElementsAre("2 repeated-key", "4 repeated-key"));
    EXPECT_EQ(findings[0].message, "\"Path\" does not count here but in line 6");
}

TEST(descriptionLines, ThatContinueAKeyAreKnown) {
    EXPECT_THAT(idsIn("[Service]\nPath Line1=C:\\a\nPath Line2=b.dll\nPath Line7=c\n"), IsEmpty());
}

TEST(descriptionLines, ThatContinueNothingAreUnknown) {
    const auto findings = findingsIn("[Service]\nPath Line2=b\n");
    EXPECT_THAT(idsOf(findings), ElementsAre("2 misspelt-key"));
    EXPECT_EQ(findings[0].message, "\"Path Line2\" continues nothing");
    EXPECT_EQ(findings[0].remedy, "Begin with Path Line1, and continue in the next line.");
    EXPECT_THAT(idsIn("[Service]\nPath Line1=a\nName=A\nPath Line2=b\n"), ElementsAre("4 misspelt-key"));
    EXPECT_THAT(idsIn("[Service]\nPath Line1=a\n[Service]\nPath Line2=b\n"), ElementsAre("4 misspelt-key"));
    EXPECT_THAT(idsIn("[Service]\nOther Line1=a\nOther Line2=b\n"), ElementsAre("2 unknown-key"));
}

TEST(descriptionLines, ThatContinueAKeyBesideAPlainOneOfThatNameAreRepeated) {
    EXPECT_THAT(idsIn("[Service]\nPath=a\nPath Line1=b\nPath Line2=c\n"), ElementsAre("3 repeated-key"));
    EXPECT_THAT(idsIn("[Service]\nPath Line1=b\nPath Line2=c\nPath=a\n"), ElementsAre("4 repeated-key"));
}

TEST(descriptionLines, InUtf16WithoutAByteOrderMarkHaveASingleFinding) {
    EXPECT_THAT(idsIn("[\0S\0]\0\n\0a\0=\0"sv), ElementsAre("utf-16"));
    EXPECT_THAT(idsIn("\0[\0S\0]\0\n\0a"sv), ElementsAre("utf-16"));
    EXPECT_THAT(idsIn("[\0]"sv), ElementsAre("1 zero-byte", "1 malformed-line", "2 malformed-line")) << "too short";
}

TEST(descriptionLines, MayEndWithAZeroByteButWarn) {
    EXPECT_THAT(idsIn("[Service]\nName=A\0Path=b\n"sv), ElementsAre("2 zero-byte"));
}

TEST(descriptionLines, MayFollowAByteOrderMark) {
    EXPECT_THAT(idsIn("\xEF\xBB\xBF[Service]\nName=A\n"), ElementsAre("1 byte-order-mark"));
}

TEST(descriptionLines, ShouldBeUtf8) {
    EXPECT_THAT(idsIn("[Service]\n; Gr\xF6\xDF"
                      "e\nName=\xE9\n"),
                ElementsAre("2 not-utf-8"));
}

TEST(descriptionLines, AreNumberedAsTheHostNumbersThem) {
    EXPECT_THAT(idsIn("\n[Service]\r\nName=A\rColour=1\n\rShape=2"), ElementsAre("3 unknown-key", "4 unknown-key"));
}

TEST(descriptionLines, OfAFileFullOfMistakesAreCounted) {
    std::string text = "[Service]\nName=A\n";
    for (int i = 0; i < 100'000; ++i) text += "Name=A\n\n";
    const auto findings = findingsIn(text);
    EXPECT_EQ(findings.size(), 40U);
    EXPECT_THAT(messageOf(findings, "blank-line"), HasSubstr("blank line"));
    EXPECT_THAT(findings.back().message, HasSubstr("more of this kind"));
}

}  // namespace
