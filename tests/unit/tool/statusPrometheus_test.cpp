#include "tool/status/statusPrometheus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "tests/support/statusReports.h"
#include "tests/support/text.h"

namespace {

using namespace nStatus;
using support::plugin;
using support::report;
using testing::HasSubstr;
using testing::Not;

TEST(nStatusPrometheus, HasAHelpAndATypeLineBeforeEachMetric) {
    EXPECT_THAT(toPrometheus(report()),
                HasSubstr("# HELP ziptra_up Whether the status file of the service could be read.\n"
                          "# TYPE ziptra_up gauge\n"
                          "ziptra_up 1\n"));
}

TEST(nStatusPrometheus, ShowsTheMachine) {
    tReport machine = report({plugin("A"), plugin("B")},
                             {"Failed to parse service description file: C:\\a.ini", "Cannot init system framework"});
    machine.allowedMask = 0xFFFFFFFD;
    const std::string text = toPrometheus(machine);
    EXPECT_THAT(text, HasSubstr("\nziptra_allowed_features 4294967293\n"));
    EXPECT_THAT(text, HasSubstr("\nziptra_preparation_seconds 1.250\n"));
    EXPECT_THAT(text, HasSubstr("\nziptra_messages 2\n"));
    EXPECT_THAT(text, HasSubstr("\nziptra_rejected_descriptions 1\n"));
    EXPECT_THAT(text, HasSubstr("\nziptra_plugins 2\n"));
}

TEST(nStatusPrometheus, ShowsTheCallsInSecondsAndTheirCodes) {
    tPlugin alpha = plugin("Alpha", 70'015, 3);
    alpha.calls.push_back({"AlphaStop", tPhase::stop, 2, -52003});
    alpha.calls.push_back({"AlphaCleanup", tPhase::cleanup, 0, -1});
    const std::string text = toPrometheus(report({alpha}));
    EXPECT_THAT(text, HasSubstr("\nziptra_plugin_call_code{plugin=\"Alpha\",phase=\"initialize\"} 3\n"
                                "ziptra_plugin_call_code{plugin=\"Alpha\",phase=\"stop\"} -52003\n"
                                "ziptra_plugin_call_code{plugin=\"Alpha\",phase=\"cleanup\"} -1\n"));
    EXPECT_THAT(text, HasSubstr("\nziptra_plugin_call_seconds{plugin=\"Alpha\",phase=\"initialize\"} 70.015\n"
                                "ziptra_plugin_call_seconds{plugin=\"Alpha\",phase=\"stop\"} 0.002\n"
                                "ziptra_plugin_call_seconds{plugin=\"Alpha\",phase=\"cleanup\"} 0.000\n"));
}

TEST(nStatusPrometheus, ShowsAStartThatTookNoTimeAndSucceeded) {
    const std::string text = toPrometheus(report({plugin("Alpha")}));
    EXPECT_THAT(text, HasSubstr("\nziptra_plugin_call_code{plugin=\"Alpha\",phase=\"initialize\"} 0\n"));
    EXPECT_THAT(text, HasSubstr("\nziptra_plugin_call_seconds{plugin=\"Alpha\",phase=\"initialize\"} 0.000\n"));
    EXPECT_THAT(text, Not(HasSubstr("phase=\"stop\"")));
}

TEST(nStatusPrometheus, ShowsNoMetricOfCallsWithoutPlugins) {
    EXPECT_THAT(toPrometheus(report()), Not(HasSubstr("ziptra_plugin_call")));
}

TEST(nStatusPrometheus, EscapesNames) {
    EXPECT_THAT(toPrometheus(report({plugin("a\"b\\c\nd\xFF")})),
                HasSubstr("{plugin=\"a\\\"b\\\\c\\nd\xEF\xBF\xBD\",phase"));
}

TEST(nStatusPrometheus, TellsPluginsOfTheSameNameApart) {
    const std::string text = toPrometheus(report({plugin("A"), plugin("A"), plugin("B"), plugin("A")}));
    EXPECT_EQ(support::occurrences(text, "code{plugin=\"A\",phase"), 1);
    EXPECT_EQ(support::occurrences(text, "code{plugin=\"A\",copy=\"2\",phase"), 1);
    EXPECT_EQ(support::occurrences(text, "code{plugin=\"A\",copy=\"3\",phase"), 1);
    EXPECT_EQ(support::occurrences(text, "code{plugin=\"B\",phase"), 1);
}

TEST(nStatusPrometheus, TellsNamesApartThatAreShownAlike) {
    EXPECT_THAT(toPrometheus(report({plugin("\xFF"), plugin("\xFE")})), HasSubstr(",copy=\"2\","));
}

TEST(nStatusPrometheus, IsNotUpWithoutAReport) {
    EXPECT_THAT(prometheusWithoutReport(), HasSubstr("\nziptra_up 0\n"));
    EXPECT_EQ(support::occurrences(prometheusWithoutReport(), "\n"), 3);
}

TEST(nStatusPrometheus, ReadsTheTimeOfWritingAsThisMachinesLocalTime) {
    const std::time_t now = 1'794'799'600;
    std::string text = std::ctime(&now);
    text.pop_back();
    EXPECT_EQ(unixTime(text), now);
    tReport timed = report();
    timed.updated = text;
    EXPECT_THAT(toPrometheus(timed), HasSubstr("\nziptra_status_timestamp_seconds 1794799600\n"));
}

TEST(nStatusPrometheus, ReadsEveryMonthAndADayOfOneDigit) {
    for (std::time_t day = 1'767'600'000; day < 1'799'000'000; day += 86'400) {
        std::string text = std::ctime(&day);
        text.pop_back();
        EXPECT_EQ(unixTime(text), day) << text;
    }
}

TEST(nStatusPrometheus, ShowsNoTimeThatItCannotRead) {
    for (const std::string text : {"", "now", "Mon Nov 16 03:26:40 20266", "Mon Xxx 16 03:26:40 2026",
                                   "Mon anF 16 03:26:40 2026", "Mon Nov xx 03:26:40 2026", "Mon Nov 00 03:26:40 2026",
                                   "Mon Nov 16 0x:26:40 2026", "Mon Nov 16 03:xx:40 2026", "Mon Nov 16 03:26:-1 2026",
                                   "Mon Nov 16 03:26:40 20x6", "Mon Nov 16 03:26:40 1899"}) {
        EXPECT_EQ(unixTime(text), std::nullopt) << text;
    }
    tReport timeless = report();
    timeless.updated = "";
    EXPECT_THAT(toPrometheus(timeless), Not(HasSubstr("timestamp")));
}

}  // namespace
