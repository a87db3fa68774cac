#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

#include "tests/support/folder.h"

namespace support {

/// The program itself, ziptra.exe, which is in the same folder as this one. Destruction ends it.
class tToolProcess {
public:
    explicit tToolProcess(const std::wstring& arguments, DWORD flags = 0) {
        const HANDLE out = openForChild("out");
        const HANDLE error = openForChild("error");
        STARTUPINFOW start{};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdOutput = out;
        start.hStdError = error;
        std::wstring line = L"\"" + (ownFolder() / "ziptra.exe").wstring() + L"\" " + arguments;
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &start, &process_);
        CloseHandle(out);
        CloseHandle(error);
    }
    ~tToolProcess() {
        terminate();
        CloseHandle(process_.hThread);
        CloseHandle(process_.hProcess);
    }
    tToolProcess(const tToolProcess&) = delete;
    tToolProcess& operator=(const tToolProcess&) = delete;

    static std::filesystem::path ownFolder() {
        wchar_t path[MAX_PATH];
        return std::filesystem::path(path, path + GetModuleFileNameW(nullptr, path, MAX_PATH)).parent_path();
    }

    void terminate() const {
        TerminateProcess(process_.hProcess, 1);
        WaitForSingleObject(process_.hProcess, INFINITE);
    }

    /// Waits for its end.
    [[nodiscard]] DWORD exitCode() const {
        DWORD code = 0xFFFFFFFF;
        WaitForSingleObject(process_.hProcess, INFINITE);
        GetExitCodeProcess(process_.hProcess, &code);
        return code;
    }

    /// What it has written; complete once it has ended.
    [[nodiscard]] std::string out() const { return folder_.read("out"); }
    [[nodiscard]] std::string error() const { return folder_.read("error"); }

private:
    [[nodiscard]] HANDLE openForChild(const char* name) const {
        SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
        return CreateFileW((folder_.path() / name).c_str(), GENERIC_WRITE,
                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inheritable, CREATE_ALWAYS, 0,
                           nullptr);
    }

    tFolder folder_{"tool process"};
    PROCESS_INFORMATION process_{};
};

}  // namespace support
