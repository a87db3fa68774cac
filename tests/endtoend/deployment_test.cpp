#include <gmock/gmock.h>

#include <algorithm>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

// The environment variables tell the stand-in for zusysapi.dll what to do: see standins/zusysapi.

class deployment : public tEndToEnd {
protected:
    deployment() { addPlugin("A", {.requires_ = "2"}); }

    /// Returns the status file of a whole life, which must release all references to the framework's objects.
    tStatusFile life() {
        std::filesystem::remove(report_);
        const tEnvironmentVariable report(L"ZUSYSAPI_REPORT", report_.native());
        tStatusFile status = runThrough();
        EXPECT_EQ(readFile(report_), "zusysapi: 0 references held\n");
        return status;
    }

private:
    tPath report_ = root() / L"report";
};

TEST_F(deployment, ASettingOfZeroClearsItsBit) {
    const tEnvironmentVariable variable(L"ZUSYSAPI_SETTING", L"0");
    const tStatusFile status = life();
    EXPECT_EQ(status.allowed, "0xfffffffd");
    EXPECT_EQ(status.messages, "");
    EXPECT_EQ(status.plugin("A").code("InitOk"), -52002);
}

/// The pauses take no time but are recorded (standin/scripted.cpp).
class deploymentRetries : public deployment {
protected:
    deploymentRetries() { scriptSystemCalls(); }

    void removeFramework() const { std::filesystem::remove(besideExecutable(L"zusysapi.dll")); }
    /// In milliseconds, a line each.
    [[nodiscard]] std::string pauses() const { return readFile(besideExecutable(L"pauses")); }
};

TEST_F(deploymentRetries, ContinueEveryTenSecondsUntilTheFrameworkAnswers) {
    const tEnvironmentVariable step(L"ZUSYSAPI_FAIL_STEP", L"1");
    const tEnvironmentVariable attempts(L"ZUSYSAPI_FAIL_ATTEMPTS", L"2");
    const tStatusFile status = life();
    EXPECT_EQ(pauses(), "10000\r\n10000\r\n");
    EXPECT_EQ(status.allowed, "0xffffffff");
    EXPECT_EQ(status.messages, "");
}

TEST_F(deploymentRetries, AStopControlMeanwhileIsReportedAtOnceAndTakesEffectAfterTheLast) {
    removeFramework();
    const tGate pause = holdPause(1);
    tInstalledService service(executable());
    service.start();
    pause.waitUntilHeld();
    EXPECT_EQ(service.status().state, DWORD{SERVICE_RUNNING});
    EXPECT_EQ(service.control(SERVICE_CONTROL_STOP), 0u);
    EXPECT_EQ(service.waitForState(SERVICE_STOP_PENDING), (tServiceStatus{16, SERVICE_STOP_PENDING, 0, 0, 0, 1, 5000}));
    pause.open();
    EXPECT_EQ(service.waitForEnd(), (tServiceStatus{16, SERVICE_STOPPED, 0, 0, 0, 0, 0}));
    EXPECT_EQ(std::ranges::count(pauses(), '\n'), 7);
}

}  // namespace
}  // namespace endtoend
