#include <windows.h>
// windows.h first.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

struct tRun {
    DWORD exitCode;
    std::string text;
};

std::filesystem::path ownFolder() {
    wchar_t path[MAX_PATH];
    return std::filesystem::path(path, path + GetModuleFileNameW(nullptr, path, MAX_PATH)).parent_path();
}

/// Runs the program, which is in the same folder as this one, and returns what it writes into a pipe.
tRun run(const std::wstring& arguments) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
    CreatePipe(&reader, &writer, &inheritable, 0);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = start.hStdError = writer;
    PROCESS_INFORMATION process{};
    std::wstring line = L"\"" + (ownFolder() / "ziptra.exe").wstring() + L"\" " + arguments;
    const BOOL started =
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process);
    CloseHandle(writer);
    tRun result{0xFFFFFFFF, {}};
    if (started == FALSE) return result;
    char text[1000];
    for (DWORD size = 0; ReadFile(reader, text, sizeof text, &size, nullptr) != FALSE && size > 0;) {
        result.text.append(text, size);
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &result.exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(reader);
    return result;
}

TEST(mainWin32, ReceivesItsArgumentsAsUtf8AndReturnsTheExitCode) {
    const tRun version = run(L"--version");
    EXPECT_EQ(version.exitCode, 0U);
    EXPECT_EQ(version.text.substr(0, 7), "ziptra ");
    const tRun unknown = run(L"\"\u63D2\u4EF6 \U0001F642 \u00E4\"");
    EXPECT_EQ(unknown.exitCode, 2U);
    EXPECT_EQ(
        unknown.text,
        "ziptra: There is no command '\xE6\x8F\x92\xE4\xBB\xB6 \xF0\x9F\x99\x82 \xC3\xA4'; see 'ziptra --help'\n");
}

}  // namespace
