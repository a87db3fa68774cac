#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/statusReports.h"
#include "tool/status/statusSummary.h"

namespace {

using namespace nStatus;
using support::plugin;
using support::report;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr std::int32_t notStarted = -52006;

std::vector<tCause> causesOf(const tReport& report, std::size_t position) {
    return findCauses(report, tNames(report), position);
}

/// Returns the cause for the last plug-in. Requires: one.
tCause causeOfLast(std::vector<tPlugin> plugins) {
    const tReport all = report(std::move(plugins));
    const std::vector<tCause> causes = causesOf(all, all.plugins.size() - 1);
    EXPECT_THAT(causes, SizeIs(1));
    return causes.empty() ? tCause{} : causes.front();
}

TEST(nStatusCauses, AreThoseOfTheTableOfCodes) {
    const tCause cause = causeOfLast({plugin("A", 0, -52002)});
    EXPECT_THAT(cause.cause, HasSubstr("none of the features"));
    EXPECT_THAT(cause.remedy, AllOf(HasSubstr("Requires"), Not(HasSubstr("`"))));
    EXPECT_EQ(cause.culprit, std::nullopt);
}

TEST(nStatusCauses, AreSeveralIfTheCodeDoesNotTellThemApart) {
    const tReport all = report({plugin("A", 0, -52005)});
    const std::vector<tCause> causes = causesOf(all, 0);
    ASSERT_THAT(causes, SizeIs(2));
    EXPECT_THAT(causes[0].cause, HasSubstr("cannot be loaded"));
    EXPECT_THAT(causes[1].cause, HasSubstr("lacks an entry point"));
}

TEST(nStatusCauses, DependOnThePhase) {
    tPlugin plugin = support::plugin("A");
    plugin.calls = {{"ACleanup", tPhase::cleanup, 0, -52005}};
    EXPECT_THAT(causeOfLast({plugin}).cause, HasSubstr("cannot be unloaded"));
    plugin.calls = {{"AStop", tPhase::stop, 0, -52003}};
    EXPECT_THAT(causeOfLast({plugin}).cause, HasSubstr("exception"));
}

TEST(nStatusCauses, OfTheHostsOwnRefusalsExplainNoOtherCall) {
    tPlugin plugin = support::plugin("A");
    plugin.calls = {{"AStop", tPhase::stop, 0, -52002}};
    EXPECT_THAT(causeOfLast({plugin}).cause, HasSubstr("the plug-in's own"));
}

TEST(nStatusCauses, AreThePluginsOwnForOtherCodes) {
    EXPECT_THAT(causeOfLast({plugin("A", 0, -7)}).remedy, HasSubstr("documentation"));
}

TEST(nStatusCauses, AreNoneForAPluginThatDidNotFail) {
    const tReport all = report({plugin("A", 5), plugin("B", 0, 1)});
    EXPECT_THAT(causesOf(all, 0), IsEmpty());
    EXPECT_THAT(causesOf(all, 1), IsEmpty());
}

TEST(nStatusCauses, NameAMissingDependency) {
    const tCause cause = causeOfLast({plugin("B"), plugin("A", 0, notStarted, {"B", "b"})});
    EXPECT_EQ(cause.cause, "it depends on b, and there is no plug-in of this name");
    EXPECT_EQ(cause.culprit, std::nullopt);
}

TEST(nStatusCauses, NameADependencyThatHasNotStarted) {
    const tCause cause = causeOfLast({plugin("B", 0, -1), plugin("A", 0, notStarted, {"B"})});
    EXPECT_EQ(cause.cause, "it depends on B, which has not started");
    EXPECT_EQ(cause.remedy, "look at B first");
    EXPECT_EQ(cause.culprit, 0U);
}

TEST(nStatusCauses, NameADependencyThatComesLater) {
    const tReport started = report({plugin("A", 0, notStarted, {"B"}), plugin("B")});
    EXPECT_THAT(causesOf(started, 0)[0].cause, HasSubstr("comes later"));
    EXPECT_EQ(causesOf(started, 0)[0].culprit, 1U);
    const tReport circle = report({plugin("A", 0, notStarted, {"B"}), plugin("B", 0, notStarted, {"A"})});
    EXPECT_THAT(causesOf(circle, 0)[0].cause, HasSubstr("comes later"));
    EXPECT_EQ(causesOf(circle, 0)[0].culprit, 1U);
}

TEST(nStatusCauses, KnowThatANameMayHaveFailedEarlierAndStartedLater) {
    const tReport all = report({plugin("B", 0, -1), plugin("A", 0, notStarted, {"B"}), plugin("B")});
    EXPECT_EQ(causesOf(all, 1)[0].culprit, 2U);
}

TEST(nStatusCauses, NameADependencyOnItself) {
    EXPECT_EQ(causeOfLast({plugin("A", 0, notStarted, {"A"})}).cause, "it depends on itself");
}

TEST(nStatusCauses, NameARepeatedDependency) {
    const tCause cause = causeOfLast({plugin("B"), plugin("C"), plugin("A", 0, notStarted, {"B", "C", "C"})});
    EXPECT_EQ(cause.cause, "its description names C twice among the dependencies");
}

TEST(nStatusCauses, FallBackToTheTableIfTheDependenciesAreAllRight) {
    const tCause cause = causeOfLast({plugin("B"), plugin("A", 0, notStarted, {"B"})});
    EXPECT_THAT(cause.cause, HasSubstr("has not started"));
}

TEST(nStatusCauses, ShowNoControlCharacters) {
    EXPECT_THAT(causeOfLast({plugin("A", 0, notStarted, {"\x1B[2J"})}).cause, Not(HasSubstr("\x1B")));
}

}  // namespace
