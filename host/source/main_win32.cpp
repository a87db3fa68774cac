#include <windows.h>

#include <cstdio>
#include <string_view>

#include "source/serviceControl.h"
#include "source/tService.h"

namespace {

constexpr const char* usage =
    "Usage: zuZiptraRemoteService.exe [OPTIONS]\n"
    "\n"
    "When launched by the Service Control Manager, this program runs as a service.\n"
    "Otherwise, such as when run from the command line, it runs in the foreground.\n"
    "\n"
    "Miscellaneous options:\n"
    "\n"
    "  -h, --help     display this help and exit\n";

int lastError() noexcept { return static_cast<int>(GetLastError()); }

/// A help argument is recognised in any position; there are no other options.
int handleArguments(int argumentCount, char** arguments) {
    for (int i = 1; i < argumentCount; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "-h" || argument == "--help") {
            std::fputs(usage, stdout);
            return 0;
        }
    }
    std::fprintf(stderr, "Try `%s --help' for more information.\n", arguments[0]);
    return -1;
}

/// The exit code is the thread's last error, whichever call set it, so no call may be made between the last one and
/// reading the error.
int runInForeground() {
    if (SetConsoleCtrlHandler(earlyConsoleHandler, TRUE) == FALSE) return lastError();
    const std::int32_t started = startService();
    if (started < 0) {
        SetLastError(static_cast<DWORD>(started));
        SetConsoleCtrlHandler(earlyConsoleHandler, FALSE);
        return lastError();
    }
    if (SetConsoleCtrlHandler(runConsoleHandler, TRUE) != FALSE) {
        if (gConsoleInterrupted == 0) runService();
        SetConsoleCtrlHandler(runConsoleHandler, FALSE);
    }
    stopService();
    SetConsoleCtrlHandler(earlyConsoleHandler, FALSE);
    return lastError();
}

}  // namespace

/// The dispatcher succeeds only in a process that the Service Control Manager has started, which distinguishes the two
/// modes. The arguments must not be examined earlier.
int main(int argumentCount, char** arguments) {
    char name[] = "zuZiptraRemoteService";  // the table requires it to be writable
    const SERVICE_TABLE_ENTRYA table[] = {{name, serviceMain}, {nullptr, nullptr}};
    if (StartServiceCtrlDispatcherA(table) != FALSE) return 0;
    const int error = lastError();
    if (error != ERROR_FAILED_SERVICE_CONTROLLER_CONNECT) return error;
    return argumentCount > 1 ? handleArguments(argumentCount, arguments) : runInForeground();
}
