#include <gtest/gtest.h>

#include "tests/unit/tool/toolRun.h"
#include "tool/install/system.h"

namespace {

using support::tToolRun;

TEST(notHere, IsSaidInOneSentenceByEveryCommandThatNeedsWindows) {
    for (const std::string command : {"install", "repair", "uninstall"}) {
        const tToolRun run({command});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.error, "ziptra: 'ziptra " + command + "' works on Windows only, where the service runs\n");
        EXPECT_EQ(tToolRun({command, "--print"}).error, run.error);
    }
}

}  // namespace
