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
    const tToolProcess worker(nRun::workerArgument);  // without standard input
    EXPECT_EQ(worker.exitCode(), 2U);
    EXPECT_THAT(worker.out(), testing::StartsWith("g 0 0 0 0 it cannot read what to do: "));
}

TEST(nRunWorker, IsNoOptionForPeople) {
    const tToolProcess tool(std::wstring(nRun::workerArgument) + L" --json");
    EXPECT_EQ(tool.exitCode(), 2U);
    EXPECT_THAT(tool.error(), HasSubstr("There is no option '--run-plugins'"));
}

}  // namespace
