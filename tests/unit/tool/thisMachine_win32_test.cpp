#include <gtest/gtest.h>
#include <windows.h>

#include "tool/check/thisMachine.h"

namespace {

/// Tells the stand-in for the framework, which is beside this program, what to answer.
class nThisMachineOnWindows : public testing::Test {
protected:
    void TearDown() override {
        set("ZUSYSAPI_SETTING", nullptr);
        set("ZUSYSAPI_FAIL_STEP", nullptr);
    }
    static void set(const char* variable, const char* value) { SetEnvironmentVariableA(variable, value); }
};

TEST_F(nThisMachineOnWindows, RunsTheHost) { EXPECT_TRUE(nThisMachine::runsHost()); }

TEST_F(nThisMachineOnWindows, AllowsDeploymentIfTheSettingSaysSo) {
    set("ZUSYSAPI_SETTING", "1");
    const nThisMachine::tAllowed allowed = nThisMachine::queryAllowed();
    EXPECT_EQ(allowed.mask, 0xFFFFFFFFU);
    EXPECT_EQ(allowed.message, "");
}

TEST_F(nThisMachineOnWindows, ForbidsDeploymentIfTheSettingSaysSo) {
    set("ZUSYSAPI_SETTING", "0");
    EXPECT_EQ(nThisMachine::queryAllowed().mask, 0xFFFFFFFDU);
}

TEST_F(nThisMachineOnWindows, HasTheHostsMessageIfTheFrameworkCannotBeReached) {
    set("ZUSYSAPI_FAIL_STEP", "4");
    const DWORD start = GetTickCount();
    const nThisMachine::tAllowed allowed = nThisMachine::queryAllowed();
    EXPECT_LT(GetTickCount() - start, 10'000U) << "there is no pause";
    EXPECT_EQ(allowed.mask, 0xFFFFFFFFU);
    EXPECT_EQ(allowed.message, "Cannot init system framework");
}

TEST_F(nThisMachineOnWindows, HasTheHostsMessageIfTheSettingCannotBeRead) {
    set("ZUSYSAPI_FAIL_STEP", "6");
    const nThisMachine::tAllowed allowed = nThisMachine::queryAllowed();
    EXPECT_EQ(allowed.mask, 0xFFFFFFFFU);
    EXPECT_EQ(allowed.message, "Deployment setting not found");
}

}  // namespace
