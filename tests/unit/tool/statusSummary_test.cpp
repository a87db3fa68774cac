#include "tool/status/statusSummary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/statusReports.h"

namespace {

using namespace nStatus;
using support::plugin;
using support::report;
using testing::ElementsAre;

tPlugin withCodes(std::int32_t initialize, std::int32_t stop, std::int32_t cleanup) {
    tPlugin result = plugin("Alpha");
    result.calls = {
        {"I", tPhase::initialize, 1, initialize}, {"S", tPhase::stop, 2, stop}, {"C", tPhase::cleanup, 3, cleanup}};
    return result;
}

TEST(nStatusSummary, TheFirstFailureDecides) {
    EXPECT_EQ(decisiveCall(withCodes(3, -1, -2))->entry, "S");
    EXPECT_EQ(decisiveCode(withCodes(3, -1, -2)), -1);
}

TEST(nStatusSummary, WithoutAFailureTheFirstWarningDecides) {
    EXPECT_EQ(decisiveCall(withCodes(0, 4, 5))->entry, "S");
    EXPECT_EQ(decisiveCode(withCodes(0, 4, 5)), 4);
}

TEST(nStatusSummary, WithoutEitherNothingDecides) {
    EXPECT_EQ(decisiveCall(withCodes(0, 0, 0)), nullptr);
    EXPECT_EQ(decisiveCode(withCodes(0, 0, 0)), 0);
    EXPECT_EQ(decisiveCall(plugin("Alpha")), nullptr);
}

TEST(nStatusSummary, FindsTheCallOfAPhase) {
    const tPlugin alpha = plugin("Alpha", 5);
    EXPECT_EQ(findCall(alpha, tPhase::initialize), &alpha.calls.front());
    EXPECT_EQ(findCall(alpha, tPhase::stop), nullptr);
}

TEST(nStatusSummary, NamesPhases) {
    EXPECT_EQ(phaseName(tPhase::initialize), "initialize");
    EXPECT_EQ(phaseName(tPhase::stop), "stop");
    EXPECT_EQ(phaseName(tPhase::cleanup), "cleanup");
}

TEST(nStatusSummary, ShowsDurationsInSuitableUnits) {
    EXPECT_EQ(durationText(0), "0 ms");
    EXPECT_EQ(durationText(9'999), "9999 ms");
    EXPECT_EQ(durationText(10'000), "10.0 s");
    EXPECT_EQ(durationText(599'999), "599.9 s");
    EXPECT_EQ(durationText(600'000), "10 min");
    EXPECT_EQ(durationText(0xFFFFFFFF), "71582 min");
}

TEST(nStatusSummary, ShowsMasksAsTheStatusFileDoes) {
    EXPECT_EQ(maskText(0), "0x0");
    EXPECT_EQ(maskText(0xFFFFFFFD), "0xfffffffd");
}

TEST(nStatusSummary, PutsFailuresFirstInTheirOrderThenWarningsThenTheSlowest) {
    const tReport all =
        report({plugin("fast", 1), plugin("slow", 9), plugin("failed", 1, -1), plugin("warned", 1, 1),
                plugin("failed later", 9, -2), plugin("silent"), plugin("warned slowly", 9, 2), plugin("as slow", 9)});
    const tSummary summary = summarize(all);
    EXPECT_THAT(summary.failuresFirst, ElementsAre(2U, 4U, 6U, 3U, 1U, 7U, 0U, 5U));
    EXPECT_EQ(summary.failed, 2U);
    EXPECT_EQ(summary.warned, 2U);
}

TEST(nStatusSummary, AddsUpTheCallsOfAPlugin) {
    tPlugin twice = plugin("twice", 5);
    twice.calls.push_back({"S", tPhase::stop, 5, 0});
    EXPECT_THAT(summarize(report({plugin("once", 9), twice})).failuresFirst, ElementsAre(1U, 0U));
}

TEST(nStatusSummary, KnowsTheLongestCallAndWhetherAnyStopped) {
    const tReport running = report({plugin("A", 5), plugin("B", 7)});
    EXPECT_EQ(summarize(running).longestMs, 7U);
    EXPECT_FALSE(summarize(running).anyStopped);
    EXPECT_TRUE(summarize(report({withCodes(0, 0, 0)})).anyStopped);
    EXPECT_EQ(summarize(report()).longestMs, 0U);
}

TEST(nStatusSummary, CountsInWords) {
    const auto counts = [](const tReport& r) { return countsText(r, summarize(r)); };
    EXPECT_EQ(counts(report()), "0 plug-ins");
    EXPECT_EQ(counts(report({plugin("A")})), "1 plug-in: none failed");
    EXPECT_EQ(counts(report({plugin("A"), plugin("B", 0, -1), plugin("C", 0, 1)})),
              "3 plug-ins: 1 failed, 1 with a warning");
}

TEST(nStatusSummary, FindingsAreMessagesAndFailures) {
    EXPECT_FALSE(hasFindings(report({plugin("A", 5)}), true));
    EXPECT_TRUE(hasFindings(report({}, {"failed"}), false));
    EXPECT_TRUE(hasFindings(report({plugin("A"), plugin("B", 0, -1)}), false));
}

TEST(nStatusSummary, WarningsAreFindingsOnlyIfStrict) {
    EXPECT_FALSE(hasFindings(report({plugin("A", 0, 1)}), false));
    EXPECT_TRUE(hasFindings(report({plugin("A", 0, 1)}), true));
}

TEST(tNames, FindsTheFirstPluginOfAName) {
    const tReport all = report({plugin("B"), plugin("A"), plugin("B")});
    const tNames names(all);
    EXPECT_EQ(names.first("A"), 1U);
    EXPECT_EQ(names.first("B"), 0U);
    EXPECT_EQ(names.first("b"), std::nullopt);
    EXPECT_EQ(names.first("C"), std::nullopt);
}

TEST(tNames, FindsTheFirstThatStarted) {
    const tReport all = report({plugin("A", 0, -1), plugin("A", 0, 1), plugin("A"), plugin("B", 0, -1)});
    const tNames names(all);
    EXPECT_EQ(names.firstStarted("A"), 1U);
    EXPECT_EQ(names.firstStarted("B"), std::nullopt);
}

TEST(tNames, KnowsWhichPluginADependencyMeans) {
    const tReport all = report({plugin("A", 0, -1), plugin("A"), plugin("X"), plugin("B", 0, -1), plugin("C")});
    const tNames names(all);
    EXPECT_EQ(names.meant("A", 2), 1U);  // the one that started
    EXPECT_EQ(names.meant("A", 1), 0U);  // which none did before
    EXPECT_EQ(names.meant("B", 2), 3U);
    EXPECT_EQ(names.meant("C", 4), 4U);
    EXPECT_EQ(names.meant("D", 2), std::nullopt);
}

}  // namespace
