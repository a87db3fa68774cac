#include "tool/explain/explainText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nExplain {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(nExplainText, ShowsWhatACodeMeansInAPluginsLineAndElsewhere) {
    const std::string text = toText(explainCode(-52003));
    EXPECT_EQ(
        text,
        "-52003 (0xFFFF34DD, 4294915293)\n"
        "One of the host's codes.\n"
        "\n"
        "In a plug-in's Code: line of the status file it means:\n"
        "  - an exception derived from std::exception left one of the plug-in's entry points\n"
        "    to do: report it to the plug-in's maker: an entry point must catch its exceptions and return a code\n"
        "\n"
        "Elsewhere in the host it means:\n"
        "  - the plug-in directory does not exist or is not a directory (.\\source\\nPluginData, line 138)\n"
        "    seen as: message Failed to open plugins directory.\n"
        "    to do: create ZiptraRemoteService\\plugins in the shared directory, or give the service access to "
        "it\n");
}

TEST(nExplainText, SaysOfAPluginsOwnCodeOnlyWhereToLook) {
    const std::string text = toText(explainCode(-7));
    EXPECT_THAT(text, StartsWith("-7 (0xFFFFFFF9, 4294967289)\nNot one of the host's codes"));
    EXPECT_THAT(text, HasSubstr("documentation"));
    EXPECT_THAT(text, Not(HasSubstr("it means:")));
}

TEST(nExplainText, ShowsOnlyTheParsersMeaningOfItsCodes) {
    const std::string text = toText(explainCode(-3));
    EXPECT_THAT(text, HasSubstr("Elsewhere in the host it means:\n  - a description file is UTF-16"));
    EXPECT_THAT(text, Not(HasSubstr("status file it means")));
}

TEST(nExplainText, ShowsTheUnsignedFormOfNegativeCodesOnly) {
    EXPECT_EQ(toText(explainCode(0)), "0 (0x00000000)\nSuccess.\n");
}

TEST(nExplainText, ShowsWhatTheNumberMeansForWindows) {
    EXPECT_THAT(toText(explainCode(*parseCode("0xC0000005"))),
                HasSubstr("\nFor Windows this number means: an access violation (STATUS_ACCESS_VIOLATION).\n"));
    EXPECT_THAT(toText(explainCode(*parseCode("0x80070643"))), HasSubstr("which `net helpmsg 1603` explains.\n"));
}

TEST(nExplainText, ShowsARule) {
    constexpr tRule rule{"blank-line", tSeverity::warning, "a title", "A cause.", "A remedy."};
    EXPECT_EQ(toText(rule), "blank-line (warning): a title\n\nA cause.\nTo do: A remedy.\n");
}

tStep step(std::string plugin, std::size_t depth, std::int32_t code, std::string text) {
    tStep made;
    made.plugin = std::move(plugin);
    made.depth = depth;
    made.code = code;
    made.text = std::move(text);
    return made;
}

tPluginExplanation failure() {
    tPluginExplanation explanation;
    explanation.name = "B";
    explanation.summary = "B did not start.";
    explanation.steps = {step("B", 0, -52006, "depends on what has not started: A"), step("A", 1, -7, "failed")};
    explanation.steps[1].findings.push_back({"rule", tSeverity::error, "a.ini", 3, "A", "something", "Remedy."});
    explanation.notes = {"A `note`."};
    explanation.first = "look at `A`";
    return explanation;
}

TEST(nExplainText, ShowsTheWayToTheCauseIndented) {
    EXPECT_EQ(toText(failure(), false),
              "B did not start.\n"
              "\n"
              "  B (-52006) depends on what has not started: A\n"
              "    A (-7) failed\n"
              "      a.ini:3: error: something [rule]\n"
              "\n"
              "A note.\n"
              "\n"
              "What to do first: look at A\n");
}

TEST(nExplainText, UsesColoursOnlyIfAskedFor) {
    EXPECT_THAT(toText(failure(), false), Not(HasSubstr("\x1B")));
    const std::string text = toText(failure(), true);
    EXPECT_THAT(text, StartsWith("\x1B[1mB did not start.\x1B[0m\n"));
    EXPECT_THAT(text, HasSubstr("\x1B[1mWhat to do first:\x1B[0m look at A\n"));
    EXPECT_THAT(text, HasSubstr("\x1B[1;31merror"));
}

TEST(nExplainText, ShowsTheCallsOfAPluginThatStarted) {
    tPluginExplanation explanation;
    explanation.summary = "A has started.";
    explanation.calls.emplace().push_back({"AInit", nStatus::tPhase::initialize, 15, 1});
    explanation.verdict = tVerdict::started;
    EXPECT_EQ(toText(explanation, false), "A has started.\n  AInit: 1 after 15 ms\n");
    explanation.verdict = tVerdict::failed;
    EXPECT_EQ(toText(explanation, false), "A has started.\n");
}

TEST(nExplainText, ShowsNoCodeOfAStepThatDoesNotFail) {
    tPluginExplanation explanation;
    explanation.steps = {step("A", 0, 0, "starts"), step("B", 0, 0, "is unknown")};
    explanation.steps[1].code.reset();
    EXPECT_THAT(toText(explanation, false), HasSubstr("  A starts\n  B is unknown\n"));
}

TEST(nExplainText, LeavesOutNotesOfAPluginThatWaitsForAnother) {
    tPluginExplanation explanation;
    explanation.steps = {step("B", 0, -52006, "fails"), step("A", 1, -52005, "fails")};
    for (tStep& each : explanation.steps) {
        each.findings = {{"e", tSeverity::error, "f", {}, {}, "error", "r"},
                         {"n", tSeverity::note, "f", {}, {}, "note", "r"}};
    }
    EXPECT_EQ(toText(explanation, false),
              "\n\n"
              "  B (-52006) fails\n"
              "    f: error: error [e]\n"
              "    A (-52005) fails\n"
              "      f: error: error [e]\n"
              "      f: note: note [n]\n");
}

TEST(nExplainText, ListsSimilarNames) {
    tPluginExplanation explanation;
    explanation.summary = "Nothing is known.";
    explanation.similar = {"Transport"};
    EXPECT_EQ(toText(explanation, false), "Nothing is known.\nSimilar names:\n  Transport\n");
}

TEST(nExplainText, LetsNoNameControlTheTerminal) {
    tPluginExplanation explanation = failure();
    explanation.summary += "\x1B[2J";
    explanation.steps[0].plugin = "\x1B]0;";
    explanation.steps[0].text = "\x07";
    explanation.steps[1].findings[0].file = "a\x1B.ini";
    explanation.steps[1].findings[0].message = "\x9B";
    explanation.notes = {"\x1B"};
    explanation.similar = {"\x1B"};
    explanation.first = "\x1B";
    explanation.verdict = tVerdict::started;
    explanation.calls.emplace().push_back({"\x1B", nStatus::tPhase::stop, 0, 0});
    const std::string text = toText(explanation, false);
    for (const char control : {'\x1B', '\x07', '\x9B'}) EXPECT_EQ(text.find(control), std::string::npos);
}

TEST(nExplainText, ShortensVeryLongLists) {
    tPluginExplanation explanation;
    for (int i = 0; i < 45; ++i) explanation.steps.push_back(step("P" + std::to_string(i), 100, -1, "fails"));
    explanation.steps[0].findings.resize(12, tFinding{"rule", tSeverity::note, "f", {}, {}, "m", "r"});
    const std::string text = toText(explanation, false);
    EXPECT_THAT(text, HasSubstr("P39 (-1) fails\n  ... and 5 more (--json lists all)\n"));
    EXPECT_THAT(text, Not(HasSubstr("P40")));
    EXPECT_THAT(text, HasSubstr("... and 2 more findings\n"));
    EXPECT_THAT(text, HasSubstr("\n" + std::string(24, ' ') + "P1 "));
}

TEST(nExplainText, WritesTheTableInMarkdown) {
    const std::string table = codesAsMarkdown();
    EXPECT_THAT(table,
                StartsWith("| code | file | line | meaning | seen as | remedy |\n|---|---|---|---|---|---|\n| -3 | "));
    EXPECT_THAT(table, HasSubstr("\n| -52003 |  |  | an exception derived"));
    EXPECT_THAT(table, HasSubstr("\n| the plug-in's | .\\source\\tPluginManager | 55 | "));
}

}  // namespace
}  // namespace nExplain
