#include <gtest/gtest.h>

#include "tests/unit/tool/toolRun.h"

namespace {

TEST(nRunLivesPosix, SayInOneSentenceWhyPlugInsCannotBeRun) {
    const support::tToolRun result({"run", "plugins/transport.ini", "--json"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.error, "ziptra: Plug-ins can only be run on Windows, because they are libraries for it\n");
}

}  // namespace
