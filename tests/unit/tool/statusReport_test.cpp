#include "tool/status/statusReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/statusReports.h"
#include "tests/support/statusRoundTrip.h"

namespace {

using nStatus::tNotAStatusFile;
using nStatus::tPhase;
using nStatus::tPlugin;
using nStatus::tReport;
using support::statusHead;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string banner = "ZU-Ziptra Remote Configuration and Deployment status\n";

tReport readReport(const std::string& text) { return support::readReport(text); }

/// Returns the only plug-in of a file with these lines after the head.
tPlugin readPlugin(const std::string& lines) {
    static std::vector<tReport> reports;  // they keep the texts of their plug-ins
    const tReport& report = reports.emplace_back(readReport(statusHead + lines));
    EXPECT_EQ(report.plugins.size(), 1U);
    return report.plugins.empty() ? tPlugin{} : report.plugins.front();
}

/// Returns the plug-in with this first line and these lines of calls.
tPlugin readNamed(const std::string& firstLine, const std::string& calls = "") {
    return readPlugin(firstLine + "\nLoaded From: \nRequires: 1\n" + calls + "\n");
}

std::string callLines(const std::string& entry) { return entry + " Time: 15 ms\n" + entry + " Code: -3\n"; }

std::vector<tPhase> phasesOf(const std::vector<std::string>& entries, const std::string& plugin = "Alpha") {
    std::string lines;
    for (const std::string& entry : entries) lines += callLines(entry);
    std::vector<tPhase> phases;
    for (const nStatus::tCall& call : readNamed(plugin + " (depends on )", lines).calls) phases.push_back(call.phase);
    return phases;
}

bool isAmbiguous(const std::vector<std::string>& entries, const std::string& plugin = "Alpha") {
    std::string lines;
    for (const std::string& entry : entries) lines += callLines(entry);
    return readNamed(plugin + " (depends on )", lines).ambiguous;
}

tNotAStatusFile refusal(const std::string& text) {
    const auto result = nStatus::read(text);
    const auto* const no = std::get_if<tNotAStatusFile>(&result);
    EXPECT_NE(no, nullptr) << text;
    return no == nullptr ? tNotAStatusFile{0, ""} : *no;
}

// The head.

TEST(nStatusRead, ReadsTheHead) {
    const tReport report =
        readReport(banner + "Updated: Mon Nov 16 03:26:40 2026\nAllowed: 0x3\nInit Time 1250 ms\n\n");
    EXPECT_EQ(report.updated, "Mon Nov 16 03:26:40 2026");
    EXPECT_EQ(report.allowedMask, 3U);
    EXPECT_EQ(report.initTimeMs, 1250U);
    EXPECT_THAT(report.messages, IsEmpty());
    EXPECT_THAT(report.plugins, IsEmpty());
    EXPECT_FALSE(report.ambiguous);
}

TEST(nStatusRead, ReadsAMissingInitTimeAsNone) { EXPECT_EQ(readReport(statusHead).initTimeMs, std::nullopt); }

TEST(nStatusRead, ReadsATimeThatWrappedToZero) {
    EXPECT_EQ(readReport(banner + "Updated: \nAllowed: 0x0\nInit Time 0 ms\n\n").initTimeMs, 0U);
}

TEST(nStatusRead, AcceptsAnEmptyTimeOfWriting) {
    EXPECT_EQ(readReport(banner + "Updated: \nAllowed: 0x0\n\n").updated, "");
}

TEST(nStatusRead, AcceptsBothEndsOfLines) {
    const tReport report = readReport(
        "ZU-Ziptra Remote Configuration and Deployment status\r\nUpdated: now\r\nAllowed: 0xfffffffd\r\n\r\nfailed\r\n"
        "Alpha (depends on Beta)\r\nLoaded From: C:\\a.dll\r\nRequires: 2\r\nInit Time: 1 ms\r\nInit Code: 0\r\n\r\n");
    EXPECT_EQ(report.allowedMask, 0xFFFFFFFDU);
    EXPECT_THAT(report.messages, ElementsAre("failed"));
    ASSERT_EQ(report.plugins.size(), 1U);
    EXPECT_EQ(report.plugins[0].path, "C:\\a.dll");
}

TEST(nStatusRead, RefusesAnEmptyFile) {
    EXPECT_EQ(refusal("").line, 1);
    EXPECT_EQ(refusal("").reason, "the file is empty");
}

TEST(nStatusRead, NamesTheLineThatNoStatusFileHas) {
    struct {
        std::string text;
        int line;
        const char* reason;
    } const rows[] = {{"[Service]\n", 1, "first line"},
                      {banner + "Allowed: 0x1\n", 2, "Updated"},
                      {banner + "Updated: now\nAllowed: 1\n", 3, "Allowed"},
                      {banner + "Updated: now\nAllowed: 0x\n", 3, "Allowed"},
                      {banner + "Updated: now\nAllowed: 0x1FF\n", 3, "Allowed"},
                      {banner + "Updated: now\nAllowed: 0xA\n", 3, "Allowed"},
                      {banner + "Updated: now\nAllowed: 0x01\n", 3, "Allowed"},
                      {banner + "Updated: now\nAllowed: 0x100000000\n", 3, "Allowed"},
                      {banner + "Updated: now\nAllowed: 0x1\nInit Time 5\n", 4, "Init Time"},
                      {banner + "Updated: now\nAllowed: 0x1\nInit Time -5 ms\n", 4, "Init Time"},
                      {banner + "Updated: now\nAllowed: 0x1\nInit Time 5 ms\nfailed\n", 5, "empty line"}};
    for (const auto& row : rows) {
        EXPECT_EQ(refusal(row.text).line, row.line) << row.text;
        EXPECT_THAT(refusal(row.text).reason, HasSubstr(row.reason)) << row.text;
    }
}

TEST(nStatusRead, NamesTheFirstLineThatIsMissing) {
    EXPECT_EQ(refusal(banner).line, 2);
    EXPECT_EQ(refusal(banner + "Updated: now\n").line, 3);
    EXPECT_EQ(refusal(banner + "Updated: now\nAllowed: 0x1\n").line, 4);
    EXPECT_EQ(refusal(banner + "Updated: now\nAllowed: 0x1\nInit Time 1 ms\n").line, 5);
}

TEST(nStatusRead, RefusesAFileThatEndsInTheMiddleOfALine) {
    EXPECT_EQ(refusal(statusHead + "Alpha (depends on )\nLoaded").line, 6);
    EXPECT_THAT(refusal(statusHead + "failed").reason, HasSubstr("middle"));
    EXPECT_EQ(refusal("ZU-Ziptra Remote Configuration and Deployment status").line, 1);
}

// Messages.

TEST(nStatusRead, ReadsEachLineBeforeThePluginsAsAMessage) {
    const tReport report = readReport(statusHead + "one\n\ntwo\nA (depends on )\nLoaded From: \nRequires: 1\n\n");
    EXPECT_THAT(report.messages, ElementsAre("one", "", "two"));
    EXPECT_EQ(report.plugins.size(), 1U);
    EXPECT_FALSE(report.ambiguous);
}

TEST(nStatusRead, ReadsPartsOfAParagraphAsMessages) {
    for (const std::string lines :
         {"A (depends on )\n", "A (depends on )\nLoaded From: \n", "A (depends on )\nLoaded From: \nRequires: 1\n",
          "A (depends on )\nLoaded From: \nRequires: 1\nInit Time: 1 ms\nInit Code: 0\n"}) {
        const tReport report = readReport(statusHead + lines + "B (depends on )\nLoaded From: \nRequires: 2\n\n");
        ASSERT_EQ(report.plugins.size(), 1U) << lines;
        EXPECT_EQ(report.plugins[0].name, "B");
        EXPECT_FALSE(report.ambiguous);
    }
}

TEST(nStatusRead, ReadsALineAfterAPluginAsAMessageAndMarksTheReport) {
    const tReport report = readReport(statusHead + "A (depends on )\nLoaded From: \nRequires: 1\n\nlost\n");
    EXPECT_EQ(report.plugins.size(), 1U);
    EXPECT_THAT(report.messages, ElementsAre("lost"));
    EXPECT_TRUE(report.ambiguous);
}

// Plug-ins.

TEST(nStatusRead, ReadsAPluginWithAllItsCalls) {
    const tPlugin plugin = readPlugin(
        "Alpha (depends on Base, Core)\nLoaded From: C:\\plugins\\alpha.dll\nRequires: 4294967295\n"
        "AlphaInit Time: 15 ms\nAlphaInit Code: -2147483648\nAlphaStop Time: 0 ms\nAlphaStop Code: 2147483647\n"
        "Cleanup Time: 4294967295 ms\nCleanup Code: 0\n\n");
    EXPECT_EQ(plugin.name, "Alpha");
    EXPECT_THAT(plugin.dependencies, ElementsAre("Base", "Core"));
    EXPECT_EQ(plugin.path, "C:\\plugins\\alpha.dll");
    EXPECT_EQ(plugin.requiresMask, 0xFFFFFFFFU);
    EXPECT_FALSE(plugin.ambiguous);
    ASSERT_EQ(plugin.calls.size(), 3U);
    EXPECT_EQ(plugin.calls[0].entry, "AlphaInit");
    EXPECT_EQ(plugin.calls[0].timeMs, 15U);
    EXPECT_EQ(plugin.calls[0].code, INT32_MIN);
    EXPECT_EQ(plugin.calls[1].timeMs, 0U);
    EXPECT_EQ(plugin.calls[1].code, INT32_MAX);
    EXPECT_EQ(plugin.calls[2].timeMs, 0xFFFFFFFFU);
    EXPECT_EQ(plugin.calls[2].code, 0);
}

TEST(nStatusRead, ReadsAPluginOfEmptyTexts) {
    const tPlugin plugin = readNamed(" (depends on )");
    EXPECT_EQ(plugin.name, "");
    EXPECT_THAT(plugin.dependencies, IsEmpty());
    EXPECT_EQ(plugin.path, "");
    EXPECT_THAT(plugin.calls, IsEmpty());
    EXPECT_FALSE(plugin.ambiguous);
}

TEST(nStatusRead, KeepsTheOrderOfTheFile) {
    const tReport report = readReport(statusHead +
                                      "B (depends on )\nLoaded From: \nRequires: 1\n\n"
                                      "A (depends on )\nLoaded From: \nRequires: 1\n\n");
    ASSERT_EQ(report.plugins.size(), 2U);
    EXPECT_EQ(report.plugins[0].name, "B");
    EXPECT_EQ(report.plugins[1].name, "A");
}

TEST(nStatusRead, DoesNotReadAsAPluginWhatTheHostCannotWrite) {
    for (const std::string lines : {"A\nLoaded From: \nRequires: 1\n\n",
                                    "A)\nLoaded From: \nRequires: 1\n\n",
                                    "A (depends on )\nRequires: 1\n\n",
                                    "A (depends on )\nLoaded From: \n\n",
                                    "A (depends on )\nLoaded From: \nRequires: 1\n",
                                    "A (depends on )\nLoaded From: \nRequires: 1\nX Time: 1 ms\n",
                                    "A (depends on \nLoaded From: \nRequires: 1\n\n",
                                    "A (depends on B,C)\nLoaded From: \nRequires: 1\n\n",
                                    "A (depends on B, )\nLoaded From: \nRequires: 1\n\n",
                                    "A (depends on , B)\nLoaded From: \nRequires: 1\n\n",
                                    "A (depends on B,  C)\nLoaded From: \nRequires: 1\n\n",
                                    "A (depends on B , C)\nLoaded From: \nRequires: 1\n\n",
                                    "A (depends on B, , C)\nLoaded From: \nRequires: 1\n\n",
                                    "A (depends on  B)\nLoaded From: \nRequires: 1\n\n",
                                    "A (depends on B\t)\nLoaded From: \nRequires: 1\n\n",
                                    "A (depends on )\nLoaded from: \nRequires: 1\n\n",
                                    "A (depends on )\nLoaded From: \nRequires: -1\n\n",
                                    "A (depends on )\nLoaded From: \nRequires: 01\n\n",
                                    "A (depends on )\nLoaded From: \nRequires: 4294967296\n\n",
                                    "A (depends on )\nLoaded From: \nRequires: 1\nX Time: 1 ms\n\n",
                                    "A (depends on )\nLoaded From: \nRequires: 1\nX Time: 1 ms\nY Code: 0\n\n",
                                    "A (depends on )\nLoaded From: \nRequires: 1\nX Time: ms\nX Code: 0\n\n",
                                    "A (depends on )\nLoaded From: \nRequires: 1\nX Time: 1\nX Code: 0\n\n",
                                    "A (depends on )\nLoaded From: \nRequires: 1\nX Time: 1 ms\nX Code: +1\n\n",
                                    "A (depends on )\nLoaded From: \nRequires: 1\nX Time: 1 ms\nX Code: -0\n\n",
                                    "A (depends on )\nLoaded From: \nRequires: 1\nX Time: 1 ms\nX Code: \n\n"}) {
        EXPECT_THAT(readReport(statusHead + lines).plugins, IsEmpty()) << lines;
    }
}

TEST(nStatusRead, ReadsAtMostThreeCalls) {
    const std::string start = "A (depends on )\nLoaded From: \nRequires: 1\n";
    const std::string three = callLines("I") + callLines("S") + callLines("C");
    EXPECT_EQ(readReport(statusHead + start + three + "\n").plugins.size(), 1U);
    EXPECT_THAT(readReport(statusHead + start + three + callLines("X") + "\n").plugins, IsEmpty());
}

TEST(nStatusRead, AcceptsEntriesWhoseNamesLookLikeLinesOfCalls) {
    const tPlugin plugin =
        readNamed("A (depends on )", callLines("X Time: 5 ms") + callLines("X Code: 0") + callLines(" Time: "));
    ASSERT_EQ(plugin.calls.size(), 3U);
    EXPECT_EQ(plugin.calls[0].entry, "X Time: 5 ms");
    EXPECT_EQ(plugin.calls[1].entry, "X Code: 0");
    EXPECT_EQ(plugin.calls[2].entry, " Time: ");
}

// Names and dependencies.

TEST(nStatusRead, AcceptsNamesWithWhatSeparatesNames) {
    const tPlugin plugin = readNamed("A, B) (x (depends on C)");
    EXPECT_EQ(plugin.name, "A, B) (x");
    EXPECT_THAT(plugin.dependencies, ElementsAre("C"));
    EXPECT_FALSE(plugin.ambiguous);
}

TEST(nStatusRead, AcceptsANameThatLooksLikeAnotherLine) {
    const tReport report = readReport(statusHead +
                                      "Loaded From: x (depends on )\nLoaded From: Loaded From: \nRequires: 1\n\n"
                                      "Requires: 1 (depends on )\nLoaded From: Requires: 1\nRequires: 1\n\n");
    ASSERT_EQ(report.plugins.size(), 2U);
    EXPECT_EQ(report.plugins[0].name, "Loaded From: x");
    EXPECT_EQ(report.plugins[0].path, "Loaded From: ");
    EXPECT_EQ(report.plugins[1].name, "Requires: 1");
}

TEST(nStatusRead, TakesTheLastListOfDependenciesThatIsPossibleAndMarksThePlugin) {
    const tPlugin plugin = readNamed("A (depends on B) (depends on C)");
    EXPECT_EQ(plugin.name, "A (depends on B)");
    EXPECT_THAT(plugin.dependencies, ElementsAre("C"));
    EXPECT_TRUE(plugin.ambiguous);
}

TEST(nStatusRead, KnowsThatNoDependencyEndsWithABlank) {
    const tPlugin plugin = readNamed("A (depends on B) (depends on )");
    EXPECT_EQ(plugin.name, "A (depends on B)");
    EXPECT_THAT(plugin.dependencies, IsEmpty());
    EXPECT_FALSE(plugin.ambiguous);
}

TEST(nStatusRead, KnowsThatNoDependencyContainsAComma) {
    const tPlugin plugin = readNamed("A (depends on B,C (depends on D)");
    EXPECT_EQ(plugin.name, "A (depends on B,C");
    EXPECT_FALSE(plugin.ambiguous);
}

TEST(nStatusRead, TriesAnEarlierListIfTheLastIsImpossible) {
    const tPlugin plugin = readNamed("A (depends on B (depends on  C)");
    EXPECT_EQ(plugin.name, "A");
    EXPECT_THAT(plugin.dependencies, ElementsAre("B (depends on  C"));
    EXPECT_FALSE(plugin.ambiguous);
}

TEST(nStatusRead, KeepsRepeatedDependencies) {
    EXPECT_THAT(readNamed("A (depends on B, B)").dependencies, ElementsAre("B", "B"));
}

// Phases.

TEST(nStatusRead, KnowsThePhasesOfThreeCallsWhateverTheirNames) {
    EXPECT_THAT(phasesOf({"Cleanup", "Init", "Stop"}), ElementsAre(tPhase::initialize, tPhase::stop, tPhase::cleanup));
    EXPECT_FALSE(isAmbiguous({"Cleanup", "Init", "Stop"}));
}

TEST(nStatusRead, BelievesNamesMadeOfThePluginAndThePhase) {
    EXPECT_THAT(phasesOf({"AlphaInit"}), ElementsAre(tPhase::initialize));
    EXPECT_THAT(phasesOf({"AlphaInit", "AlphaStop"}), ElementsAre(tPhase::initialize, tPhase::stop));
    EXPECT_THAT(phasesOf({"AlphaInit", "AlphaCleanup"}), ElementsAre(tPhase::initialize, tPhase::cleanup));
    EXPECT_FALSE(isAmbiguous({"AlphaInit"}));
    EXPECT_FALSE(isAmbiguous({"AlphaInitialize"}));
    EXPECT_FALSE(isAmbiguous({"AlphaInitialize", "AlphaStop"}));
    EXPECT_FALSE(isAmbiguous({"AlphaInitialize", "AlphaCleanup"}));
}

TEST(nStatusRead, DoubtsNamesMadeOtherwise) {
    for (const auto& entries : std::vector<std::vector<std::string>>{{"Init"},
                                                                     {"BetaInit"},
                                                                     {"AlphaInitX"},
                                                                     {"AlphaStop"},
                                                                     {"AlphaCleanup"},
                                                                     {"AlphaStop", "AlphaCleanup"},
                                                                     {"AlphaInit", "Stop"},
                                                                     {"AlphaInit", "AlphaInit"},
                                                                     {"Init", "AlphaStop"}}) {
        EXPECT_TRUE(isAmbiguous(entries)) << entries.front();
    }
    EXPECT_TRUE(isAmbiguous({"Init"}, ""));  // a plug-in without a name
}

TEST(nStatusRead, TakesThePhasesThatTheNamesSuggest) {
    EXPECT_THAT(phasesOf({"STOP_IT"}), ElementsAre(tPhase::stop));
    EXPECT_THAT(phasesOf({"doCleanup"}), ElementsAre(tPhase::cleanup));
    EXPECT_THAT(phasesOf({"Begin", "Cleanup"}), ElementsAre(tPhase::initialize, tPhase::cleanup));
    EXPECT_THAT(phasesOf({"Stop", "End"}), ElementsAre(tPhase::stop, tPhase::cleanup));
    EXPECT_THAT(phasesOf({"Stop", "Cleanup"}), ElementsAre(tPhase::stop, tPhase::cleanup));
}

TEST(nStatusRead, TakesTheEarliestPhasesIfTheNamesSuggestNone) {
    EXPECT_THAT(phasesOf({"Begin"}), ElementsAre(tPhase::initialize));
    EXPECT_THAT(phasesOf({"Begin", "End"}), ElementsAre(tPhase::initialize, tPhase::stop));
}

// What the host writes.

tPluginEntry entryOf(tPluginDescription description, std::uint64_t initMs, std::int32_t initCode) {
    tPluginEntry entry;
    entry.description = std::move(description);
    entry.initTimeMs = initMs;
    entry.initCode = initCode;
    return entry;
}

std::vector<tPluginEntry> hostileEntries() {
    std::vector<tPluginEntry> entries;
    for (const char* const name : {"", " ", "a, b", "X (depends on Y)", "X (depends on ", ")", "Loaded From: x",
                                   "Requires: 1", "Init Time: 5 ms", "\xFF\x01", "(depends on )"}) {
        entries.push_back(entryOf({name, {}, 1, name, name, name, name}, 15, -52006));
        entries.push_back(entryOf({name, {"Q (depends on R", "X (depends on Y)"}, 0, name, name, name, name}, 0, 0));
        entries.push_back(entryOf({name, {"a", "b"}, 7, "", "", "", ""}, 0x1'0000'0000, 0));
    }
    return entries;
}

TEST(nStatusRead, ReadsWhatTheHostWroteOrMarksIt) {
    std::vector<tPluginEntry> entries = hostileEntries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i % 2 == 0) entries[i].stopTimeMs = 16;
        if (i % 3 == 0) entries[i].cleanupCode = -52005;
    }
    const tReport report = readReport(
        support::writtenText({"Mon Nov 16 03:26:40 2026\n", 5, 0x1'0000'0007, "what (depends on )\r\n\n", entries}));
    EXPECT_EQ(report.allowedMask, 5U);
    EXPECT_EQ(report.initTimeMs, 7U);
    EXPECT_THAT(report.messages, ElementsAre("what (depends on )", ""));
    ASSERT_EQ(report.plugins.size(), entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        EXPECT_TRUE(support::readRightOrMarked(report.plugins[i], entries[i])) << entries[i].description.name;
    }
}

TEST(nStatusRead, TakesTimeProportionalToALineOfPhrasesAndCommas) {
    std::string line;
    for (int i = 0; i < 200'000; ++i) line += " (depends on a, b";
    const tPlugin plugin = readNamed(line + ")");
    EXPECT_TRUE(plugin.ambiguous);
    EXPECT_THAT(plugin.dependencies, ElementsAre("a", "b"));
}

}  // namespace
