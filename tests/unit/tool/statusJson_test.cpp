#include "tool/status/statusJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/statusReports.h"

namespace {

using namespace nStatus;
using support::plugin;
using support::report;

nlohmann::json parsed(const tReport& report) { return nlohmann::json::parse(toJson(report)); }

TEST(nStatusJson, ContainsTheWholeReport) {
    tPlugin alpha = plugin("Alpha", 15, -3, {"Base", "Core"});
    alpha.calls.push_back({"AlphaStop", tPhase::stop, 0xFFFFFFFF, 7});
    alpha.calls.push_back({"AlphaCleanup", tPhase::cleanup, 1, 0});
    EXPECT_EQ(parsed(report({alpha, plugin("Beta")}, {"one", ""})), nlohmann::json::parse(R"({
        "schema": 1, "updated": "Mon Nov 16 03:26:40 2026", "allowed": 4294967295, "initTimeMs": 1250,
        "messages": ["one", ""],
        "plugins": [
            {"name": "Alpha", "dependencies": ["Base", "Core"], "path": "C:\\Alpha.dll", "requires": 1, "calls": [
                {"entry": "AlphaInitialize", "phase": "initialize", "timeMs": 15, "code": -3},
                {"entry": "AlphaStop", "phase": "stop", "timeMs": 4294967295, "code": 7},
                {"entry": "AlphaCleanup", "phase": "cleanup", "timeMs": 1, "code": 0}]},
            {"name": "Beta", "dependencies": [], "path": "C:\\Beta.dll", "requires": 1, "calls": []}]})"));
}

TEST(nStatusJson, HasAnEmptyListForNoPluginsAndNullForNoInitTime) {
    tReport empty = report();
    empty.initTimeMs.reset();
    EXPECT_EQ(parsed(empty)["plugins"], nlohmann::json::array());
    EXPECT_EQ(parsed(empty)["messages"], nlohmann::json::array());
    EXPECT_TRUE(parsed(empty)["initTimeMs"].is_null());
}

TEST(nStatusJson, MarksWhatIsAmbiguous) {
    tReport ambiguous = report({plugin("Alpha"), plugin("Beta")});
    ambiguous.plugins[1].ambiguous = true;
    EXPECT_FALSE(parsed(ambiguous).contains("ambiguous"));
    EXPECT_FALSE(parsed(ambiguous)["plugins"][0].contains("ambiguous"));
    EXPECT_EQ(parsed(ambiguous)["plugins"][1]["ambiguous"], true);
    ambiguous.ambiguous = true;
    EXPECT_EQ(parsed(ambiguous)["ambiguous"], true);
}

TEST(nStatusJson, KeepsTheFieldsInTheDocumentedOrder) {
    EXPECT_THAT(toJson(report()), testing::StartsWith("{\n  \"schema\": 1,\n  \"updated\": "));
}

TEST(nStatusJson, ShowsBytesThatAreNotUtf8AsReplacementCharacters) {
    EXPECT_EQ(parsed(report({plugin("a\xFF")}))["plugins"][0]["name"], "a\xEF\xBF\xBD");
}

}  // namespace
