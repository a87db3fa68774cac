#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/unit/tool/graphs.h"
#include "tool/graph/graphText.h"

namespace nGraph {
namespace {

using nlohmann::json;
using support::graphOf;
using support::graphOfAllKinds;
using support::plugin;

json parsed(const tGraph& graph) { return json::parse(toJson(graph, "C:\\plugins")); }

TEST(nGraphJson, ContainsThePluginsInStartOrder) {
    tGraph graph = graphOf({plugin("A"), plugin("B", {}, std::nullopt), plugin("C", {"C"}, -52006)});
    graph.nodes[0].file = "a.ini";
    graph.messages = {"message"};
    const json document = parsed(graph);
    EXPECT_EQ(document["schema"], 1);
    EXPECT_EQ(document["directory"], "C:\\plugins");
    EXPECT_EQ(document["allowed"], 0xFFFFFFFFU);
    EXPECT_EQ(document["messages"], json({"message"}));
    EXPECT_EQ(document["plugins"], json::parse(R"([
        {"name": "A", "file": "a.ini", "code": 0, "mayStart": true, "circle": null},
        {"name": "B", "file": "", "code": null, "mayStart": true, "circle": null},
        {"name": "C", "file": "", "code": -52006, "mayStart": false, "circle": 1}])"));
}

TEST(nGraphJson, ContainsTheDependenciesWithTheirState) {
    EXPECT_EQ(parsed(graphOfAllKinds())["dependencies"], json::parse(R"([
        {"plugin": "CircleA", "order": 2, "dependsOn": "CircleB", "dependsOnOrder": 3, "state": "circular"},
        {"plugin": "CircleB", "order": 3, "dependsOn": "CircleA", "dependsOnOrder": 2, "state": "circular"},
        {"plugin": "Early", "order": 4, "dependsOn": "Late", "dependsOnOrder": 5, "state": "late"},
        {"plugin": "Lost", "order": 6, "dependsOn": "Gone", "dependsOnOrder": null, "state": "missing"},
        {"plugin": "Twice", "order": 8, "dependsOn": "Settings", "dependsOnOrder": 7, "state": "repeated"},
        {"plugin": "User", "order": 9, "dependsOn": "Settings", "dependsOnOrder": 7, "state": "fulfilled"},
        {"plugin": "Victim", "order": 10, "dependsOn": "Broken", "dependsOnOrder": 1, "state": "failed"}])"));
}

TEST(nGraphJson, DoesNotRepeatALongNameForEachDependency) {
    const std::string longName(100'000, 'n');
    std::vector<std::string> dependencies;
    for (int i = 0; i < 1000; ++i) dependencies.push_back("D" + std::to_string(i));
    const tGraph graph = graphOf({plugin(longName, dependencies, -52006)});
    EXPECT_LT(toJson(graph, "").size(), 600'000U) << "a hundred megabytes, if each repeats it";
    const json document = parsed(graph);
    EXPECT_EQ(document["plugins"][0]["name"], longName);
    EXPECT_EQ(document["dependencies"][999]["plugin"], std::string(199, 'n') + "…");
    EXPECT_EQ(document["dependencies"][999]["order"], 1);
}

TEST(nGraphJson, RepeatsANameOfUsualLengthAsItIs) {
    const std::string name(200, 'n');
    EXPECT_EQ(parsed(graphOf({plugin(name, {"D"}, -52006)}))["dependencies"][0]["plugin"], name);
}

TEST(nGraphJson, ContainsTheWholeNameOfADependency) {
    const std::string longName(1000, 'n');
    EXPECT_EQ(parsed(graphOf({plugin("A", {longName}, -52006)}))["dependencies"][0]["dependsOn"], longName);
}

TEST(nGraphJson, ListsCirclesAndMissingNames) {
    const json document = parsed(graphOfAllKinds());
    EXPECT_EQ(document["circles"], json::parse(R"([["CircleA", "CircleB"]])"));
    EXPECT_EQ(document["missing"], json({"Gone"}));
    EXPECT_EQ(document["plugins"].size(), 10U);
}

TEST(nGraphJson, IsCompleteWithoutPlugins) {
    const json document = parsed(graphOf({}));
    for (const char* const list : {"messages", "plugins", "dependencies", "circles", "missing"}) {
        EXPECT_EQ(document[list], json::array()) << list;
    }
}

TEST(nGraphJson, ReplacesBytesThatAreNotUtf8) {
    EXPECT_EQ(parsed(graphOf({plugin("\xFF")}))["plugins"][0]["name"], "\xEF\xBF\xBD");
}

}  // namespace
}  // namespace nGraph
