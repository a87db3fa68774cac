#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/unit/tool/checkHelpers.h"
#include "tool/check/render.h"

namespace {

using nCheck::tPrediction;

TEST(checkJson, HasEverythingThatScriptsRelyOn) {
    tPrediction prediction;
    prediction.directory = "plugins";
    prediction.allowedMask = 0xFFFFFFFD;
    prediction.messages = {"a message"};
    tPluginDescription description = support::described("A", {"B", "C"});
    description.path = R"(C:\a.dll)";
    description.requiresMask = 0xFFFFFFFF;
    prediction.plugins = {{"plugins/a.ini", description, -52006, false}, {"plugins/b.ini", support::described(""), {}}};
    prediction.findings = {nRules::finding("blank-line", "plugins/b.ini", 3, {}, "blank line")};
    EXPECT_EQ(nlohmann::json::parse(nCheck::toJson(prediction)), nlohmann::json::parse(R"({
        "schema": 1,
        "directory": "plugins",
        "allowed": 4294967293,
        "messages": ["a message"],
        "plugins": [
            {"file": "plugins/a.ini", "name": "A", "dependencies": ["B", "C"], "path": "C:\\a.dll",
             "requires": 4294967295, "code": -52006, "mayStart": false},
            {"file": "plugins/b.ini", "name": "", "dependencies": [], "path": "", "requires": 1, "code": null,
             "mayStart": true}],
        "findings": [
            {"id": "blank-line", "severity": "error", "file": "plugins/b.ini", "line": 3, "plugin": null,
             "message": "blank line", "remedy": "Remove the line."}]
    })"));
}

TEST(checkJson, OfNothingHasEmptyLists) {
    EXPECT_EQ(nlohmann::json::parse(nCheck::toJson({})),
              nlohmann::json::parse(R"({"schema": 1, "directory": "", "allowed": 4294967295, "messages": [],
                                        "plugins": [], "findings": []})"));
}

TEST(checkJson, ReplacesBytesThatAreNotUtf8) {
    tPrediction prediction;
    prediction.plugins = {{"a.ini", support::described("A\xFF"), {}}};
    EXPECT_EQ(nlohmann::json::parse(nCheck::toJson(prediction))["plugins"][0]["name"], "A\uFFFD");
}

}  // namespace
