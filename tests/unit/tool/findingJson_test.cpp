#include "tool/findingJson.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

TEST(nJson, HasAllMembersOfAFinding) {
    const tFinding finding{"blank-line", tSeverity::warning, "a.ini", 7, "A", "blank \"line\"", "Delete it"};
    EXPECT_EQ(nJson::toJson(finding).dump(),
              R"({"id":"blank-line","severity":"warning","file":"a.ini","line":7,"plugin":"A",)"
              R"("message":"blank \"line\"","remedy":"Delete it"})");
}

TEST(nJson, HasNullForAMissingLineAndPlugin) {
    const tFinding finding{"x", tSeverity::note, "a.ini", std::nullopt, std::nullopt, "m", "r"};
    EXPECT_EQ(nJson::toJson(finding).dump(),
              R"({"id":"x","severity":"note","file":"a.ini","line":null,"plugin":null,"message":"m","remedy":"r"})");
}

TEST(nJson, TextIsValidUtf8WhateverTheDocumentContains) {
    nlohmann::ordered_json document;
    document["插件"] =
        "a\xFF"
        "b\n";
    EXPECT_EQ(nJson::toText(document),
              "{\n  \"插件\": \"a\xEF\xBF\xBD"
              "b\\n\"\n}\n");
}

}  // namespace
