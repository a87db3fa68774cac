#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/folder.h"
#include "tests/unit/tool/toolRun.h"

namespace {

using support::tToolRun;
using testing::HasSubstr;

TEST(nRequest, RejectsAMaskThatIsNone) {
    const support::tFolder folder;
    const tToolRun result({"check", "--allowed", "two", folder.utf8()});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.error, HasSubstr("'two' is no mask"));
}

TEST(nRequest, RejectsAMappingThatIsNone) {
    const support::tFolder folder;
    for (const char* map : {"C:\\X", "=dist", "C:\\X="}) {
        const tToolRun result({"check", "--map", map, folder.utf8()});
        EXPECT_EQ(result.exitCode, 2) << map;
        EXPECT_THAT(result.error, HasSubstr("is no mapping")) << map;
    }
}

TEST(nRequest, RejectsAMappingToADirectoryThatDoesNotExist) {
    const support::tFolder folder;
    for (const std::string& target : {folder.utf8("none"), folder.write("file")}) {
        const tToolRun result({"check", "--map", "C:\\X=" + target, folder.utf8()});
        EXPECT_EQ(result.exitCode, 2) << target;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.error, "ziptra: --map: There is no directory '" + target + "'; see 'ziptra check --help'\n");
    }
    EXPECT_EQ(tToolRun({"check", "--map", "C:\\X=" + folder.utf8(), folder.utf8()}).exitCode, 0);
}

TEST(nRequest, RejectsAnOutputFileWithoutAName) {
    const support::tFolder folder;
    for (const char* const command : {"graph", "status"}) {
        const tToolRun result({command, folder.utf8(), "--output", ""});
        EXPECT_EQ(result.exitCode, 2) << command;
        EXPECT_EQ(result.out, "") << command;
        EXPECT_EQ(result.error,
                  std::string("ziptra: --output: The name is empty; see 'ziptra ") + command + " --help'\n");
    }
}

}  // namespace
