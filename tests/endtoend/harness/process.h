#pragma once

#include <string>

#include "tests/endtoend/harness/system.h"
#include "tests/endtoend/harness/wait.h"

namespace endtoend {

/// A child process with a console of its own, so that console events reach it alone, and with its output captured.
/// Ended, if need be by force, when the object goes.
class tProcess {
public:
    /// commandLine: the whole of it, program name included; empty: the quoted path of the executable.
    explicit tProcess(const tPath& executable, std::wstring commandLine = {});
    ~tProcess();
    tProcess(const tProcess&) = delete;
    tProcess& operator=(const tProcess&) = delete;

    /// With full access, as its creator gets it.
    [[nodiscard]] HANDLE handle() const noexcept { return process_.get(); }
    [[nodiscard]] DWORD id() const noexcept { return id_; }
    [[nodiscard]] bool running() const;

    /// The exit code, once the process has ended.
    DWORD exitCode(std::chrono::milliseconds timeout = patience) const;

    /// What it wrote, once the process has ended.
    [[nodiscard]] std::string output() const { return readFile(output_); }
    [[nodiscard]] std::string errors() const { return readFile(errors_); }

    /// CTRL_C_EVENT or CTRL_BREAK_EVENT to its console. False when this system cannot generate the event.
    [[nodiscard]] bool sendConsoleEvent(DWORD event) const;
    /// Ctrl+C.
    void interrupt() const;

private:
    tTemporaryDirectory directory_;
    tPath output_ = directory_.path() / L"output";
    tPath errors_ = directory_.path() / L"errors";
    tHandle process_;
    DWORD id_ = 0;
};

/// The part of sendConsoleEvent that runs in a process of its own, since a process has one console only: joins the
/// console of the given process and generates the event there. The exit code for that process; 0 on success.
int generateConsoleEvent(DWORD processId, DWORD event);

/// How the test program asks itself for the above: this argument, then the two numbers.
inline constexpr const char* consoleEventArgument = "--generate-console-event";

}  // namespace endtoend
