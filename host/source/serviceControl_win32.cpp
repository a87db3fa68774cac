#include <windows.h>

#include <cstddef>

#include "source/serviceControl.h"
#include "source/tService.h"

void* gStatusHandle = nullptr;
constinit std::atomic<std::int32_t> gStatusLock{0};
constinit std::atomic<std::uint8_t> gConsoleInterrupted{0};

namespace {

constexpr DWORD stopHintMs = 5000;

// A report is seven numbers without padding.
static_assert(sizeof(SERVICE_STATUS) == 7 * sizeof(DWORD) && offsetof(SERVICE_STATUS, dwWaitHint) == 6 * sizeof(DWORD));

/// The fields in which the reports of this service differ.
struct tReport {
    DWORD state = 0;
    DWORD controlsAccepted = 0;
    DWORD exitCode = NO_ERROR;
    DWORD serviceExitCode = 0;
    DWORD checkpoint = 0;
    DWORD waitHintMs = 0;
};

/// A report that the manager refuses is lost: there is nowhere else to send it.
void report(const tReport& fields) noexcept {
    SERVICE_STATUS status{SERVICE_WIN32_OWN_PROCESS, fields.state,      fields.controlsAccepted, fields.exitCode,
                          fields.serviceExitCode,    fields.checkpoint, fields.waitHintMs};
    SetServiceStatus(static_cast<SERVICE_STATUS_HANDLE>(gStatusHandle), &status);
}

/// A busy wait is enough: the control handler holds the lock only for the duration of one report.
void takeStatusLock() noexcept {
    std::int32_t free = 0;
    while (!gStatusLock.compare_exchange_strong(free, 1)) free = 0;
}

}  // namespace

void serviceMain(unsigned long /*argumentCount*/, char** arguments) {
    gStatusHandle = RegisterServiceCtrlHandlerA(arguments[0], serviceControlHandler);
    if (gStatusHandle == nullptr) return;
    report({.state = SERVICE_START_PENDING});
    const std::int32_t started = startService();
    if (started < 0) {
        report({.state = SERVICE_STOPPED,
                .exitCode = ERROR_SERVICE_SPECIFIC_ERROR,
                .serviceExitCode = static_cast<DWORD>(started)});
        return;
    }
    report({.state = SERVICE_RUNNING, .controlsAccepted = SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_SHUTDOWN});
    runService();
    takeStatusLock();  // never freed: the service object is about to be destroyed
    report({.state = SERVICE_STOP_PENDING, .checkpoint = 2, .waitHintMs = stopHintMs});
    stopService();
    report({.state = SERVICE_STOPPED});
}

void serviceControlHandler(unsigned long control) {
    if (control != SERVICE_CONTROL_STOP && control != SERVICE_CONTROL_SHUTDOWN) return;
    if (gStatusLock.exchange(1) == 1) return;
    report({.state = SERVICE_STOP_PENDING, .checkpoint = 1, .waitHintMs = stopHintMs});
    signalServiceStop();
    gStatusLock.exchange(0);
}

int earlyConsoleHandler(unsigned long /*event*/) {
    gConsoleInterrupted = 1;
    return TRUE;
}

int runConsoleHandler(unsigned long /*event*/) {
    SetConsoleCtrlHandler(runConsoleHandler, FALSE);
    signalServiceStop();
    return TRUE;
}
