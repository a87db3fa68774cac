#include <gtest/gtest.h>

#include "tool/check/thisMachine.h"

namespace {

TEST(nThisMachineElsewhere, DoesNotRunTheHostAndAllowsEverything) {
    EXPECT_FALSE(nThisMachine::runsHost());
    EXPECT_EQ(nThisMachine::queryAllowed().mask, 0xFFFFFFFFU);
    EXPECT_EQ(nThisMachine::queryAllowed().message, "");
}

}  // namespace
