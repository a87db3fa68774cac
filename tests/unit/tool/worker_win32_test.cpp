#include <windows.h>

#include "tool/run/worker.h"
// windows.h first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/toolProcess_win32.h"

namespace {

using support::tToolProcess;
using testing::HasSubstr;

TEST(nRunWorker, RunsNothingWithoutAWholeOrder) {
    const tToolProcess worker(nRun::workerArgument);
    EXPECT_EQ(worker.exitCode(), 2U);
    EXPECT_EQ(worker.out(), "");
}

TEST(nRunWorker, IsNoOptionForPeople) {
    const tToolProcess tool(std::wstring(nRun::workerArgument) + L" --json");
    EXPECT_EQ(tool.exitCode(), 2U);
    EXPECT_THAT(tool.error(), HasSubstr("There is no option '--run-plugins'"));
}

}  // namespace
