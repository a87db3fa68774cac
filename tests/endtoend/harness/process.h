#pragma once

#include <string>

#include "tests/endtoend/harness/system.h"
#include "tests/endtoend/harness/wait.h"

namespace endtoend {

/// A child process with a console of its own, so that console events reach it alone, and with its output captured.
/// Destruction ends it, by force if necessary.
class tProcess {
public:
    /// The command line includes the program's name; if it is empty, it is the executable's quoted path.
    explicit tProcess(const tPath& executable, std::wstring commandLine = {}, DWORD creationFlags = 0);
    ~tProcess();
    tProcess(const tProcess&) = delete;
    tProcess& operator=(const tProcess&) = delete;

    /// The creator's handle, with full access.
    [[nodiscard]] HANDLE handle() const noexcept { return process_.get(); }
    [[nodiscard]] DWORD id() const noexcept { return id_; }
    [[nodiscard]] bool running() const;

    /// Waits for the end of the process and returns its exit code.
    DWORD exitCode(std::chrono::milliseconds timeout = patience) const;

    /// What it has written; complete once the process has ended.
    [[nodiscard]] std::string output() const { return readFile(output_); }
    [[nodiscard]] std::string errors() const { return readFile(errors_); }

    /// Generates CTRL_C_EVENT or CTRL_BREAK_EVENT in its console. Returns the system's error if that fails, or 0.
    /// Throws if the console cannot be reached, as when the process has ended.
    [[nodiscard]] DWORD sendConsoleEvent(DWORD event) const;
    /// Sends Ctrl+C.
    void interrupt() const;

private:
    tTemporaryDirectory directory_;
    tPath output_ = directory_.path() / L"output";
    tPath errors_ = directory_.path() / L"errors";
    tHandle process_;
    DWORD id_ = 0;
};

/// The part of sendConsoleEvent that runs in a process of its own, since a process has one console only: joins the
/// console of the given process and generates the event there. Returns the exit code of the process of its own.
int generateConsoleEvent(DWORD processId, DWORD event);

/// The first argument with which the test program calls itself for the above; the two numbers follow.
inline constexpr const char* consoleEventArgument = "--generate-console-event";

}  // namespace endtoend
