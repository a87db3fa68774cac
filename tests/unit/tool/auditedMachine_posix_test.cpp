#include <gtest/gtest.h>

#include "tests/unit/tool/toolRun.h"

namespace {

TEST(nAuditedMachine, IsNotHere) {
    const support::tToolRun run({"audit", "--fix"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.error, "ziptra: 'ziptra audit' works on Windows only, where the service runs\n");
}

}  // namespace
