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

}  // namespace
