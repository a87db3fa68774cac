#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

// The service's reports. Type, state, controls accepted, exit code, service's exit code, checkpoint, wait hint.
constexpr tServiceStatus startPending{16, 2, 0, 0, 0, 0, 0};
constexpr tServiceStatus running{16, 4, 5, 0, 0, 0, 0};
constexpr tServiceStatus stopRequested{16, 3, 0, 0, 0, 1, 5000};
constexpr tServiceStatus stopping{16, 3, 0, 0, 0, 2, 5000};
constexpr tServiceStatus stopped{16, 1, 0, 0, 0, 0, 0};
constexpr tServiceStatus startFailed{16, 1, 0, 1066, 0xFFFFFFFF, 0, 0};

class serviceMode : public tEndToEnd {};

TEST_F(serviceMode, AcceptsNothingWhileItStartsAndStopAndShutdownAfterwards) {
    scriptSystemCalls();
    const tGate gate = holdStatusWrite(1);
    tInstalledService service(executable());
    service.start();
    gate.waitUntilHeld();
    EXPECT_EQ(service.status(), startPending);
    EXPECT_NE(service.control(SERVICE_CONTROL_STOP), 0u);
    gate.open();
    EXPECT_EQ(service.waitForState(SERVICE_RUNNING), running);
}

TEST_F(serviceMode, ReportsEachStepOfAStopToTheManager) {
    scriptSystemCalls();
    addPlugin("A", {.stop = "StopWaits", .cleanup = "CleanupThrowsRuntimeError"});
    const tGate plugin = holdPlugin("A");
    const tGate end = holdStatusWrite(5);
    tInstalledService service(executable());
    service.start();
    service.waitForState(SERVICE_RUNNING);

    EXPECT_EQ(service.control(SERVICE_CONTROL_STOP), 0u);
    plugin.waitUntilHeld();
    EXPECT_EQ(service.status(), stopRequested);
    plugin.open();
    end.waitUntilHeld();
    EXPECT_EQ(service.status(), stopping);
    end.open();
    EXPECT_EQ(service.waitForEnd(), stopped);
    EXPECT_EQ(tStatusFile::read().plugin("A").code("CleanupThrowsRuntimeError"), -52003);
}

TEST_F(serviceMode, StopsByItselfWithoutAPluginDirectory) {
    std::filesystem::remove(descriptions());
    tInstalledService service(executable());
    service.startBrief();
    EXPECT_EQ(service.waitForEnd(), stopped);
    EXPECT_EQ(tStatusFile::read().messages, "Failed to open plugins directory.\n");
}

TEST_F(serviceMode, AFailedStartIsReportedWithItsCode) {
    // No event can be created: the call goes to a function that refuses these arguments.
    rebindImport(executable(), "CreateEventA", "OpenEventA");
    tInstalledService service(executable());
    service.startBrief();
    EXPECT_EQ(service.waitForEnd(), startFailed);
    EXPECT_FALSE(std::filesystem::exists(tStatusFile::path()));
}

}  // namespace
}  // namespace endtoend
