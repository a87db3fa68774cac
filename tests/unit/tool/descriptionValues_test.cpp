#include "tool/check/descriptionValues.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"
#include "tool/check/descriptionFile.h"

namespace {

using support::idsOf;
using testing::ElementsAre;
using testing::IsEmpty;

/// Finds what is wrong with one line of a description.
std::vector<tFinding> findingsFor(std::string_view line) {
    const support::tFolder folder;
    return nCheck::readFile(folder.write("a.ini", "[Service]\n" + std::string(line) + "\n")).findings.take("");
}

std::vector<std::string> idsFor(std::string_view line) { return idsOf(findingsFor(line)); }

TEST(descriptionValues, MayNotBeginOrEndWithABlankInsideQuotes) {
    for (const char* line : {R"(Path="C:\a.dll ")", R"(Path=" C:\a.dll")", "Stop=\"S\t\"", "Initialize=\" \""}) {
        EXPECT_THAT(idsFor(line), ElementsAre("2 blanks-in-value")) << line;
    }
    EXPECT_THAT(idsFor("Path=  C:\\a b.dll  "), IsEmpty()) << "the parser removes blanks outside quotes";
    EXPECT_EQ(findingsFor("Stop=\"S \"").at(0).message, "Stop is \"S \", with a blank at an end");
}

TEST(descriptionValues, MayNotBeginOrEndWithACharacterThatOnlyLooksLikeABlank) {
    EXPECT_THAT(idsFor("Path=C:\\a.dll\u00A0"), ElementsAre("2 blanks-in-value"));
    EXPECT_THAT(idsFor("Name=\u3000A"), IsEmpty()) << "Dependencies can name it";
    EXPECT_THAT(idsFor("Dependencies=A,\u3000B"), ElementsAre("2 blanks-in-value"));
    EXPECT_THAT(idsFor("Dependencies=A, B ,\tC"), IsEmpty());
    EXPECT_THAT(idsFor("Path=C:\\a\u00A0b.dll"), IsEmpty());
}

TEST(descriptionValues, LoseOnlyAPairOfDoubleQuotesAroundTheWhole) {
    for (const char* line : {"Path=\"C:\\a.dll", "Path=C:\\a.dll\"", R"(Dependencies="A", "B")", "Name='A'",
                             R"(Stop=""S"")", "Name=A\"B"}) {
        EXPECT_THAT(idsFor(line), ElementsAre("2 quote-in-value")) << line;
    }
    for (const char* line : {R"(Path="C:\a.dll")", "Name=Bob's", "Name='", "Dependencies=\"A, B\""}) {
        EXPECT_THAT(idsFor(line), IsEmpty()) << line;
    }
}

TEST(descriptionValues, EndWithTheLineNotWithAComment) {
    EXPECT_THAT(idsFor("Path=C:\\a.dll ; the library"), ElementsAre("2 comment-in-value"));
    EXPECT_THAT(idsFor("Name=;A"), ElementsAre("2 comment-in-value"));
    EXPECT_THAT(idsFor("Path=C:\\a;b.dll"), IsEmpty()) << "a semicolon may be part of a path";
}

TEST(descriptionValues, OfKeysThatDoNotCountAreNotExamined) {
    EXPECT_THAT(idsFor("Path=\"a\nPath=b"), ElementsAre("2 repeated-key"));
}

TEST(descriptionValues, OfRequiresAreNumbers) {
    EXPECT_THAT(idsFor("Requires=\"2\" ; text"), ElementsAre("2 requires-not-a-number"));
}

}  // namespace
