#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "stdpath/path.h"
#include "tests/unit/tool/toolRun.h"
#include "tool/status/statusSource.h"

namespace {

TEST(nStatusCommandWin32, SaysWhenThereIsAStatusFileIfNoneWasNamedAndThereIsNone) {
    const std::string file = nStatus::hostsFile();
    ASSERT_FALSE(std::filesystem::exists(nStdPath::widePathFromUtf8(file))) << "a service runs on this machine";
    const support::tToolRun run({"status"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.error, testing::StartsWith("ziptra: Cannot read '" + file + "': "));
    EXPECT_THAT(run.error, testing::EndsWith("; the service writes it when it starts, if its folder exists\n"));
}

TEST(nStatusCommandWin32, GivesThatRemedyOnlyForTheMachinesOwnStatusFile) {
    EXPECT_THAT(support::tToolRun({"status", "none.status"}).error,
                testing::Not(testing::HasSubstr("the service writes it")));
}

}  // namespace
