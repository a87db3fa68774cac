#include "tool/status/statusTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/statusReports.h"
#include "tests/support/text.h"

namespace {

using namespace nStatus;
using support::plugin;
using support::report;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(nStatusTable, BeginsWithTheMachine) {
    EXPECT_THAT(toTable(report(), false),
                StartsWith("Updated Mon Nov 16 03:26:40 2026, allowed 0xffffffff (deployment allowed), prepared in "
                           "1250 ms\n0 plug-ins\n"));
}

TEST(nStatusTable, SaysThatDeploymentIsNotAllowed) {
    tReport forbidden = report();
    forbidden.allowedMask = 0xFFFFFFFD;
    forbidden.initTimeMs.reset();
    EXPECT_THAT(toTable(forbidden, false), HasSubstr("allowed 0xfffffffd (deployment not allowed)\n"));
}

TEST(nStatusTable, ShowsMessages) {
    EXPECT_THAT(toTable(report({}, {"one", "two"}), false), EndsWith("\n\nMessages\n  one\n  two\n"));
}

TEST(nStatusTable, HasALineForEachPluginFailuresFirst) {
    const std::string table = toTable(report({plugin("Fine", 15), plugin("Refused", 0, -52002)}), false);
    EXPECT_THAT(table, HasSubstr("\n"
                                 "PLUG-IN    CODE  INITIALIZE\n"
                                 "Refused  -52002        0 ms  RefusedInitialize: the machine allows none of the "
                                 "features that the plug-in requires\n"
                                 "Fine          0       15 ms\n"));
}

TEST(nStatusTable, HasColumnsForStopAndCleanupIfTheyAreShown) {
    tPlugin stopped = plugin("Alpha", 15);
    stopped.calls.push_back({"AlphaCleanup", tPhase::cleanup, 70'000, 0});
    EXPECT_THAT(toTable(report({stopped, plugin("Silent")}), false),
                HasSubstr("\n"
                          "PLUG-IN  CODE  INITIALIZE       STOP    CLEANUP\n"
                          "Alpha       0       15 ms                70.0 s\n"
                          "Silent      0\n"));
}

TEST(nStatusTable, ExplainsWarnings) {
    EXPECT_THAT(toTable(report({plugin("Alpha", 0, 7)}), false),
                HasSubstr("  AlphaInitialize: a warning of the plug-in's own\n"));
}

TEST(nStatusTable, NamesAllLikelyCauses) {
    EXPECT_THAT(toTable(report({plugin("Alpha", 0, -52005)}), false),
                HasSubstr("the plug-in's library cannot be loaded, or the plug-in's library lacks"));
}

TEST(nStatusTable, SaysWhereToAskAboutFailures) {
    EXPECT_THAT(toTable(report({plugin("Alpha", 0, -1)}), false), HasSubstr("ziptra explain"));
    EXPECT_THAT(toTable(report({plugin("Alpha", 0, 1)}), false), Not(HasSubstr("ziptra explain")));
}

TEST(nStatusTable, SaysThatTheReportIsAmbiguous) {
    tReport ambiguous = report({plugin("Alpha")}, {"lost"});
    EXPECT_THAT(toTable(ambiguous, false), Not(HasSubstr("belong to none")));
    ambiguous.ambiguous = true;
    EXPECT_THAT(toTable(ambiguous, false), HasSubstr("belong to none"));
}

TEST(nStatusTable, AlignsWideCharacters) {
    const std::string table = toTable(report({plugin("\xE6\x8F\x92\xE4\xBB\xB6"), plugin("Plug-in A")}), false);
    EXPECT_THAT(table, HasSubstr("\n\xE6\x8F\x92\xE4\xBB\xB6          0\n"));
    EXPECT_THAT(table, HasSubstr("\nPlug-in A     0\n"));
}

TEST(nStatusTable, ShortensLongNames) {
    const std::string table = toTable(report({plugin(std::string(100'000, 'x'), 0, -1)}), false);
    EXPECT_THAT(table, HasSubstr("\n" + std::string(39, 'x') + "\xE2\x80\xA6    -1"));
    EXPECT_LT(table.size(), 1000U);
}

TEST(nStatusTable, ShowsNoControlCharacters) {
    tReport hostile = report({plugin("\x1B]0;name\x07", 0, -52006, {"\x1B"})}, {"\x1B[31m"});
    hostile.updated = "\x1B[H";
    EXPECT_THAT(toTable(hostile, false), Not(HasSubstr("\x1B")));
}

TEST(nStatusTable, HasColoursOnlyIfAskedFor) {
    const tReport mixed = report({plugin("Failed", 0, -1), plugin("Warned", 0, 1), plugin("Fine")}, {"message"});
    EXPECT_THAT(toTable(mixed, false), Not(HasSubstr("\x1B")));
    const std::string coloured = toTable(mixed, true);
    EXPECT_THAT(coloured, HasSubstr("\x1B[1;31mFailed\x1B[0m"));
    EXPECT_THAT(coloured, HasSubstr("\x1B[33mWarned\x1B[0m"));
    EXPECT_THAT(coloured, HasSubstr("\nFine "));
    EXPECT_THAT(coloured, HasSubstr("\x1B[1;31mmessage\x1B[0m"));
    EXPECT_THAT(coloured, HasSubstr("\x1B[1;31m3 plug-ins: 1 failed, 1 with a warning\x1B[0m"));
}

TEST(nStatusTable, ColoursTheCountsByTheWorst) {
    EXPECT_THAT(toTable(report({plugin("A", 0, 1)}), true), HasSubstr("\x1B[33m1 plug-in"));
    EXPECT_THAT(toTable(report({plugin("A")}), true), HasSubstr("\x1B[1m1 plug-in"));
}

TEST(nStatusTable, HasNoBlanksAtTheEndsOfLines) {
    const std::string table = toTable(report({plugin("Alpha"), plugin("Beta", 0, -1)}, {"message "}), false);
    EXPECT_EQ(support::occurrences(table, " \n"), 0);
}

}  // namespace
