#pragma once

#include <windows.h>

#include <string>

namespace support {

/// One test of this program, run again in another process, where the environment variable ZIPTRA_TEST_AGAIN exists.
class tOwnProcess {
public:
    explicit tOwnProcess(const std::wstring& test, DWORD flags = 0) {
        wchar_t self[MAX_PATH];
        GetModuleFileNameW(nullptr, self, MAX_PATH);
        std::wstring line = L"\"" + std::wstring(self) + L"\" --gtest_filter=" + test;
        STARTUPINFOW start{};
        start.cb = sizeof start;
        SetEnvironmentVariableW(variable, L"1");
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, flags, nullptr, nullptr, &start, &process_);
        SetEnvironmentVariableW(variable, nullptr);
    }
    ~tOwnProcess() {
        CloseHandle(process_.hThread);
        CloseHandle(process_.hProcess);
    }
    tOwnProcess(const tOwnProcess&) = delete;
    tOwnProcess& operator=(const tOwnProcess&) = delete;

    /// Returns whether this is that other process.
    static bool isThis() { return GetEnvironmentVariableW(variable, nullptr, 0) != 0; }

    void terminate() const { TerminateProcess(process_.hProcess, 1); }

    /// Waits for its end. Returns 0 if the test passed there.
    [[nodiscard]] DWORD exitCode() const {
        DWORD code = 0xFFFFFFFF;
        WaitForSingleObject(process_.hProcess, INFINITE);
        GetExitCodeProcess(process_.hProcess, &code);
        return code;
    }

private:
    static constexpr const wchar_t* variable = L"ZIPTRA_TEST_AGAIN";
    PROCESS_INFORMATION process_{};
};

}  // namespace support
