#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"
#include "tool/check/render.h"

namespace {

using nCheck::tPrediction;
using testing::HasSubstr;
using testing::Not;

tPrediction somePrediction() {
    tPrediction prediction;
    prediction.directory = "plugins";
    prediction.messages = {"Failed to parse service description file: plugins/b.ini"};
    prediction.plugins = {{"plugins/a.ini", support::described("Settings"), 0},
                          {"plugins/c.ini", support::described("A"), -52006, false},
                          {"plugins/d.ini", support::described("B"), std::nullopt},
                          {"plugins/e.ini", support::described("C"), std::nullopt, false}};
    prediction.findings = {nRules::finding("blank-line", "plugins/b.ini", 3, {}, "blank line"),
                           nRules::finding("unknown-key", "plugins/c.ini", 4, "A", "unknown")};
    return prediction;
}

TEST(checkText, ShowsFindingsMessagesOrderAndASummary) {
    EXPECT_EQ(toText(somePrediction(), false),
              "plugins/b.ini:3: error: blank line [blank-line]\n"
              "    Remove the line.\n"
              "plugins/c.ini:4: warning: unknown [unknown-key]\n"
              "    Remove the line if nothing else reads it.\n"
              "\n"
              "Messages in the status file:\n"
              "  Failed to parse service description file: plugins/b.ini\n"
              "\n"
              "Start order, and the code of each start (-: the plug-in's own code decides, or it is unknown):\n"
              "    1  Settings        0  plugins/a.ini\n"
              "    2  A          -52006  plugins/c.ini\n"
              "    3  B               -  plugins/d.ini\n"
              "    4  C           fails  plugins/e.ini\n"
              "\n"
              "4 plug-ins, of which 2 will not start; 1 rejected description; 1 error, 1 warning, 0 notes\n");
}

TEST(checkText, CountsTheRejectedDescriptionsAmongTheMessages) {
    tPrediction prediction;
    prediction.messages = {"Failed to parse service description file: a.ini", "Deployment setting not found",
                           "Failed to parse service description file: b.ini"};
    EXPECT_THAT(toText(prediction, false),
                HasSubstr("\n0 plug-ins, of which 0 will not start; 2 rejected descriptions; 0 errors"));
}

TEST(checkText, OfNothingIsTheSummary) {
    EXPECT_EQ(nCheck::toText({}, false), "0 plug-ins, of which 0 will not start; 0 errors, 0 warnings, 0 notes\n");
}

TEST(checkText, HasColoursIfTheyAreWanted) {
    EXPECT_THAT(toText(somePrediction(), true), HasSubstr("\x1B[1;31m -52006\x1B[0m"));
    EXPECT_THAT(toText(somePrediction(), false), Not(HasSubstr("\x1B")));
}

TEST(checkText, AlignsTheCodesWhateverTheNamesConsistOf) {
    tPrediction prediction;
    prediction.plugins = {{"a.ini", support::described("Settings"), 0},
                          {"b.ini", support::described("e\u0301e\u0301"), 0},
                          {"c.ini", support::described("\u65E5\u672C"), 0}};
    EXPECT_THAT(toText(prediction, false), HasSubstr("  Settings        0  a.ini\n"));
    EXPECT_THAT(toText(prediction, false), HasSubstr("  e\u0301e\u0301              0  b.ini\n"));
    EXPECT_THAT(toText(prediction, false), HasSubstr("  \u65E5\u672C            0  c.ini\n"));
}

TEST(checkText, IsUtf8ThatControlsNeitherTheTerminalNorTheDirectionOfWriting) {
    tPrediction prediction;
    prediction.plugins = {{"a\n.ini", support::described("A\x1B[31mB\xFF\u202E"), 0}};
    prediction.messages = {"m\x1B\xC3"};
    prediction.findings = {nRules::finding("unknown-key", "f\x1B", 4, "A", "message\r\u2066")};
    prediction.findings[0].remedy = "remedy\x80";
    const std::string text = toText(prediction, false);
    EXPECT_THAT(text, HasSubstr("A\uFFFD[31mB\uFFFD\uFFFD "));
    EXPECT_THAT(text, HasSubstr("a\uFFFD.ini\n"));
    EXPECT_THAT(text, HasSubstr("  m\uFFFD\uFFFD\n"));
    EXPECT_THAT(text, HasSubstr("f\uFFFD:4: warning: message\uFFFD\uFFFD ["));
    EXPECT_THAT(text, HasSubstr("    remedy\uFFFD\n"));
}

}  // namespace
