#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tool/explain/explainText.h"

namespace nExplain {
namespace {

using nlohmann::json;

json codeDocument(std::int32_t code) { return json::parse(toJson(explainCode(code))); }

TEST(nExplainJson, ContainsWhatIsKnownAboutACode) {
    const json document = codeDocument(-52003);
    EXPECT_EQ(document["schema"], 1);
    EXPECT_EQ(document["kind"], "code");
    EXPECT_EQ(document["code"], -52003);
    EXPECT_EQ(document["hexadecimal"], "0xFFFF34DD");
    EXPECT_EQ(document["origin"], "host");
    EXPECT_EQ(document["summary"], "One of the host's codes.");
    EXPECT_EQ(document["system"], nullptr);
    ASSERT_EQ(document["meanings"].size(), 2U);
    const json& exception = document["meanings"][0];
    EXPECT_EQ(exception["file"], nullptr);
    EXPECT_EQ(exception["line"], nullptr);
    EXPECT_EQ(exception["inCodeLine"], true);
    const json& directory = document["meanings"][1];
    EXPECT_EQ(directory["file"], ".\\source\\nPluginData");
    EXPECT_EQ(directory["line"], 138);
    EXPECT_EQ(directory["inCodeLine"], false);
    EXPECT_EQ(directory["seenAs"], "message `Failed to open plugins directory.`");
    EXPECT_EQ(directory["meaning"], "the plug-in directory does not exist or is not a directory");
    EXPECT_FALSE(directory["remedy"].get<std::string>().empty());
}

TEST(nExplainJson, NamesWhatWindowsCallsACode) {
    EXPECT_EQ(codeDocument(*parseCode("0xC0000005"))["system"],
              json({{"name", "STATUS_ACCESS_VIOLATION"}, {"meaning", "an access violation"}}));
    EXPECT_EQ(codeDocument(*parseCode("0x80070643"))["system"]["name"], nullptr);
}

TEST(nExplainJson, NamesWhereACodeComesFrom) {
    EXPECT_EQ(codeDocument(0)["origin"], "success");
    EXPECT_EQ(codeDocument(1)["origin"], "warning");
    EXPECT_EQ(codeDocument(-3)["origin"], "parser");
    EXPECT_EQ(codeDocument(-52001)["origin"], "unused");
    EXPECT_EQ(codeDocument(-7)["origin"], "plugin");
}

TEST(nExplainJson, ContainsARule) {
    constexpr tRule rule{"blank-line", tSeverity::error, "a title", "A cause.", "A remedy."};
    EXPECT_EQ(json::parse(toJson(rule)), json({{"schema", 1},
                                               {"kind", "finding"},
                                               {"id", "blank-line"},
                                               {"severity", "error"},
                                               {"title", "a title"},
                                               {"cause", "A cause."},
                                               {"remedy", "A remedy."}}));
}

TEST(nExplainJson, ContainsTheWholeExplanationOfAPlugin) {
    tPluginExplanation explanation;
    explanation.name = "A";
    explanation.verdict = tVerdict::failed;
    explanation.summary = "Summary.";
    explanation.calls = std::vector<tShownCall>{{"AInit", nStatus::tPhase::initialize, 1, -7},
                                                {"AStop", nStatus::tPhase::stop, 2, 0},
                                                {"AClean", nStatus::tPhase::cleanup, 3, 4}};
    explanation.found.emplace();
    explanation.found->file = "a.ini";
    explanation.found->mayStart = false;
    tStep step{"A", 2, -7, "text", "remedy", {}};
    step.findings.push_back({"rule", tSeverity::note, "a.ini", 1, "A", "message", "Do."});
    explanation.steps = {step};
    explanation.notes = {"Note."};
    explanation.first = "first";
    EXPECT_EQ(json::parse(toJson(explanation)), json::parse(R"({
        "schema": 1, "kind": "plugin", "name": "A", "verdict": "failed", "summary": "Summary.",
        "calls": [{"entry": "AInit", "phase": "initialize", "timeMs": 1, "code": -7},
                  {"entry": "AStop", "phase": "stop", "timeMs": 2, "code": 0},
                  {"entry": "AClean", "phase": "cleanup", "timeMs": 3, "code": 4}],
        "predicted": {"file": "a.ini", "code": null, "mayStart": false},
        "steps": [{"plugin": "A", "depth": 2, "code": -7, "text": "text", "remedy": "remedy",
                   "findings": [{"id": "rule", "severity": "note", "file": "a.ini", "line": 1, "plugin": "A",
                                 "message": "message", "remedy": "Do."}]}],
        "notes": ["Note."], "first": "first", "similar": []})"));
}

TEST(nExplainJson, ContainsNullsWhereNothingIsKnown) {
    tPluginExplanation explanation;
    explanation.similar = {"B"};
    explanation.steps.emplace_back();
    const json document = json::parse(toJson(explanation));
    EXPECT_EQ(document["verdict"], "unknown");
    for (const char* const key : {"calls", "predicted", "first"}) EXPECT_EQ(document[key], nullptr) << key;
    EXPECT_EQ(document["steps"][0]["code"], nullptr);
    EXPECT_EQ(document["similar"], json({"B"}));
}

}  // namespace
}  // namespace nExplain
