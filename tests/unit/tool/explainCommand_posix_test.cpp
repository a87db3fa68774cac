#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/explainedMachine.h"
#include "tests/unit/tool/toolRun.h"

// Where there is no registry, the tool knows neither the host's plug-in directory nor its status file.

namespace {

using support::nExplainCommandOfPlugins;
using support::tToolRun;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

TEST_F(nExplainCommandOfPlugins, IsContentWithTheStatusFileWhereThereIsNoPluginDirectory) {
    const tToolRun run(with({"Transport"}, true, false));
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, StartsWith("Transport did not start: -52006"));
    EXPECT_THAT(run.out, Not(HasSubstr("[requires-zero]")));
}

TEST_F(nExplainCommandOfPlugins, IsContentWithTheDescriptionsWhereThereIsNoStatusFile) {
    const tToolRun run(with({"Transport"}, false, true));
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, StartsWith("Transport will fail with -52006"));
}

TEST_F(nExplainCommandOfPlugins, EndsWithTwoIfItCanReadNeither) {
    const tToolRun run(with({"Transport"}, false, false));
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_THAT(run.error, StartsWith("ziptra: "));
}

}  // namespace
