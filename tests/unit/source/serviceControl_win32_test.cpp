#include <atomic>
#include <chrono>
#include <sstream>
#include <thread>

#include "source/serviceControl.h"
#include "tests/support/hostCalls_win32.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The seven fields of a report in their order.
std::string textOf(const SERVICE_STATUS& status) {
    std::ostringstream text;
    text << "report " << status.dwServiceType << ' ' << status.dwCurrentState << ' ' << status.dwControlsAccepted << ' '
         << status.dwWin32ExitCode << ' ' << status.dwServiceSpecificExitCode << ' ' << status.dwCheckPoint << ' '
         << status.dwWaitHint;
    return text.str();
}

constexpr const char* startPending = "report 16 2 0 0 0 0 0";
constexpr const char* running = "report 16 4 5 0 0 0 0";
constexpr const char* stopRequested = "report 16 3 0 0 0 1 5000";
constexpr const char* stopPending = "report 16 3 0 0 0 2 5000";
constexpr const char* stopped = "report 16 1 0 0 0 0 0";
constexpr const char* startFailed = "report 16 1 0 1066 4294967295 0 0";

class serviceControl : public support::tHostCalls {
protected:
    void SetUp() override {
        tHostCalls::SetUp();
        imports::RegisterServiceCtrlHandlerA.replace([this](const char* name, LPHANDLER_FUNCTION handler) {
            EXPECT_EQ(handler, &serviceControlHandler);
            calls.emplace_back(std::string("register ") + name);
            return handle;
        });
        imports::SetServiceStatus.replace([this](SERVICE_STATUS_HANDLE given, SERVICE_STATUS* status) {
            EXPECT_EQ(given, handle);
            calls.push_back(textOf(*status));
            return TRUE;
        });
    }

    static void runServiceMain(const char* name = "zuZiptraRemoteService") {
        std::string text = name;
        char* arguments[] = {text.data(), nullptr};
        serviceMain(1, arguments);
    }

    /// Starts a service, as the control handler expects.
    void start() {
        gStatusHandle = handle;
        ASSERT_EQ(startService(), 0);
        calls.clear();
    }

    const SERVICE_STATUS_HANDLE handle = reinterpret_cast<SERVICE_STATUS_HANDLE>(&calls);
};

// The service main.

TEST_F(serviceControl, ReportsEachStateInOrderAndNothingElse) {
    runServiceMain();
    EXPECT_THAT(calls, ElementsAre("register zuZiptraRemoteService", startPending, "create-event", running, "list",
                                   stopPending, "close-event", stopped));
    EXPECT_EQ(gService, nullptr);
}

TEST_F(serviceControl, RegistersUnderTheNameThatTheManagerPasses) {
    runServiceMain("another name");
    EXPECT_EQ(calls.at(0), "register another name");
}

TEST_F(serviceControl, ReturnsAtOnceAndReportsNothingWhenTheHandlerIsRefused) {
    imports::RegisterServiceCtrlHandlerA.replace([](auto...) -> SERVICE_STATUS_HANDLE { return nullptr; });
    runServiceMain();
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_EQ(gStatusHandle, nullptr);
}

TEST_F(serviceControl, ReportsAFailedStartAsStoppedWithItsOwnCodeAndStopsNothing) {
    refuseEvents();
    runServiceMain();
    EXPECT_THAT(calls, ElementsAre("register zuZiptraRemoteService", startPending, "create-event", startFailed));
    EXPECT_EQ(gStatusLock, 0);
}

TEST_F(serviceControl, ContinuesIfItsReportsAreRefused) {
    imports::SetServiceStatus.replace([this](SERVICE_STATUS_HANDLE, SERVICE_STATUS* status) {
        calls.push_back(textOf(*status));
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    });
    runServiceMain();
    EXPECT_THAT(calls, ElementsAre("register zuZiptraRemoteService", startPending, "create-event", running, "list",
                                   stopPending, "close-event", stopped));
}

TEST_F(serviceControl, NeverFreesTheLockAfterTheRunAndDropsEveryLaterRequest) {
    runServiceMain();
    EXPECT_EQ(gStatusLock, 1);
    calls.clear();
    serviceControlHandler(SERVICE_CONTROL_STOP);
    serviceControlHandler(SERVICE_CONTROL_SHUTDOWN);
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_EQ(gStatusLock, 1);
}

TEST_F(serviceControl, HoldsTheLockWhileItReportsTheStop) {
    std::string lockAtReport;
    imports::SetServiceStatus.replace([&](SERVICE_STATUS_HANDLE, SERVICE_STATUS* status) {
        lockAtReport += std::to_string(status->dwCurrentState) + ':' + std::to_string(gStatusLock.load()) + ' ';
        return TRUE;
    });
    runServiceMain();
    EXPECT_EQ(lockAtReport, "2:0 4:0 3:1 1:1 ");
}

TEST_F(serviceControl, SpinsOnATakenLockBeforeItReportsTheStop) {
    std::thread handlerThread;
    std::atomic<bool> released = false;
    imports::RegOpenKeyExW.replace([&](auto...) {  // the run: a request is being reported just as it ends
        gStatusLock = 1;
        handlerThread = std::thread([&released] {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            released = true;
            gStatusLock = 0;
        });
        return LSTATUS{ERROR_FILE_NOT_FOUND};
    });
    bool releasedAtReport = false;
    imports::SetServiceStatus.replace([&](SERVICE_STATUS_HANDLE, SERVICE_STATUS* status) {
        if (status->dwCheckPoint == 2) releasedAtReport = released;
        return TRUE;
    });
    runServiceMain();
    handlerThread.join();
    EXPECT_TRUE(releasedAtReport);
    EXPECT_EQ(gStatusLock, 1);
}

// The control handler.

TEST_F(serviceControl, ReportsAStopRequestThenSetsTheEvent) {
    start();
    serviceControlHandler(SERVICE_CONTROL_STOP);
    EXPECT_THAT(calls, ElementsAre(stopRequested, "set-event"));
}

TEST_F(serviceControl, IgnoresEveryOtherControlWithoutAReport) {
    start();
    for (unsigned long control = 0; control < 256; ++control) {
        if (control != SERVICE_CONTROL_STOP && control != SERVICE_CONTROL_SHUTDOWN) serviceControlHandler(control);
    }
    serviceControlHandler(0x80000001);
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_EQ(gStatusLock, 0);
}

TEST_F(serviceControl, DropsARequestWhileTheLockIsTakenAndLeavesItTaken) {
    start();
    gStatusLock = 1;
    serviceControlHandler(SERVICE_CONTROL_STOP);
    serviceControlHandler(SERVICE_CONTROL_SHUTDOWN);
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_EQ(gStatusLock, 1);
}

TEST_F(serviceControl, HoldsTheLockWhileItReportsAndSignalsAndReleasesIt) {
    start();
    std::string lock;
    imports::SetServiceStatus.replace([&](auto...) {
        lock += "report:" + std::to_string(gStatusLock.load()) + ' ';
        return TRUE;
    });
    imports::SetEvent.replace([&](HANDLE event) {
        lock += "set:" + std::to_string(gStatusLock.load()) + ' ';
        return imports::SetEvent.real(event);
    });
    serviceControlHandler(SERVICE_CONTROL_STOP);
    EXPECT_EQ(lock, "report:1 set:1 ");
    EXPECT_EQ(gStatusLock, 0);
}

TEST_F(serviceControl, TreatsAShutdownAsAStopAndReportsASecondRequestBeforeTheRunHasReturned) {
    start();
    serviceControlHandler(SERVICE_CONTROL_STOP);
    serviceControlHandler(SERVICE_CONTROL_SHUTDOWN);
    EXPECT_THAT(calls, ElementsAre(stopRequested, "set-event", stopRequested, "set-event"));
}

TEST_F(serviceControl, StillSetsTheEventWhenItsReportIsRefused) {
    start();
    imports::SetServiceStatus.replace([](auto...) { return FALSE; });
    serviceControlHandler(SERVICE_CONTROL_STOP);
    EXPECT_THAT(calls, ElementsAre("set-event"));
}

// The console handlers.

constexpr unsigned long consoleEvents[] = {
    CTRL_C_EVENT, CTRL_BREAK_EVENT, CTRL_CLOSE_EVENT, CTRL_LOGOFF_EVENT, CTRL_SHUTDOWN_EVENT, 3, 0xFFFFFFFF};

TEST_F(serviceControl, RecordsAnyEarlyConsoleEventAndDoesNothingElse) {
    for (const unsigned long event : consoleEvents) {
        gConsoleInterrupted = 0;
        EXPECT_EQ(earlyConsoleHandler(event), TRUE);
        EXPECT_EQ(gConsoleInterrupted, 1);
    }
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(serviceControl, RemovesTheRunHandlerAndThenEndsTheRunOnAnyConsoleEvent) {
    start();
    for (const unsigned long event : consoleEvents) {
        calls.clear();
        EXPECT_EQ(runConsoleHandler(event), TRUE);
        EXPECT_THAT(calls, ElementsAre("remove-run", "set-event"));
    }
    EXPECT_EQ(gConsoleInterrupted, 0);
}

}  // namespace
