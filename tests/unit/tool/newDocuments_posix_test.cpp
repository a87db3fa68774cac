// What docs/tool.md shows of new is what it prints.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/folder.h"
#include "tests/unit/tool/sources.h"
#include "tests/unit/tool/toolRun.h"
#include "tool/new/newRun.h"

namespace {

std::string document() { return support::read(support::sources() / "docs" / "tool.md"); }

TEST(newDocuments, ShowWhatItPrints) {
    const auto done = [](auto&&...) { return ""; };
    const auto yes = [](const std::string&) { return true; };
    std::ostringstream out;
    tContext context{out, out};
    nNew::run({"Heartbeat"}, false, {done, done, yes, yes, "/opt/ziptra/bin", false}, context);
    EXPECT_THAT(document(), testing::HasSubstr("```\n$ ziptra new Heartbeat\n" + out.str() + "```\n"));
}

TEST(newDocuments, ShowWhatItSaysAboutABadName) {
    const std::string answer = support::tToolRun({"new", "my-plugin"}).error;
    EXPECT_THAT(document(), testing::HasSubstr("```\n$ ziptra new my-plugin\n" + answer + "```\n"));
}

}  // namespace
