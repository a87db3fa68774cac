// docs/schema/graph.json against what the program can write.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/folder.h"
#include "tests/unit/tool/graphs.h"
#include "tests/unit/tool/sources.h"
#include "tool/graph/graphText.h"

namespace {

using nlohmann::json;
using support::plugin;

TEST(graphSchema, AllowsMissingNamesThatLookTheSame) {
    const auto graph = support::graphOf({plugin("A", {"\xFE", "\xFF"}, -52006)});
    ASSERT_EQ(json::parse(nGraph::toJson(graph, ""))["missing"], json({"\uFFFD", "\uFFFD"}));
    const json schema = json::parse(support::read(support::sources() / "docs" / "schema" / "graph.json"));
    const json& missing = schema.at("properties").at("missing");
    EXPECT_EQ(missing.at("type"), "array");
    EXPECT_FALSE(missing.value("uniqueItems", false)) << "bytes that are not UTF-8 all become the same character";
}

}  // namespace
