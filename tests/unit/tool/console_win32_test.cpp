#include <windows.h>
// windows.h first.
#include <gtest/gtest.h>

#include <string>

#include "tests/unit/tool/ownProcess_win32.h"
#include "tool/console.h"

namespace {

using nConsole::tStandardStream;

/// While it exists, one of the standard handles is another one.
class tRedirection {
public:
    tRedirection(DWORD which, HANDLE handle) : which_(which), before_(GetStdHandle(which)) {
        SetStdHandle(which, handle);
    }
    ~tRedirection() { SetStdHandle(which_, before_); }
    tRedirection(const tRedirection&) = delete;
    tRedirection& operator=(const tRedirection&) = delete;

private:
    DWORD which_;
    HANDLE before_;
};

TEST(nConsoleWin32, WritesTheBytesAsTheyAreIntoAPipe) {
    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
    ASSERT_TRUE(CreatePipe(&reader, &writer, nullptr, 0));
    const std::string text = "\xE6\x8F\x92\xFF\n";
    for (const tStandardStream stream : {tStandardStream::output, tStandardStream::error}) {
        const tRedirection redirection(stream == tStandardStream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE,
                                       writer);
        EXPECT_FALSE(nConsole::isTerminal(stream));
        EXPECT_FALSE(nConsole::enableColours(stream));
        EXPECT_FALSE(nConsole::showsColours(stream));
        EXPECT_TRUE(nConsole::write(stream, text));
        std::string read(text.size(), '\0');
        DWORD size = 0;
        EXPECT_TRUE(ReadFile(reader, read.data(), static_cast<DWORD>(read.size()), &size, nullptr));
        EXPECT_EQ(read, text);
    }
    CloseHandle(writer);
    CloseHandle(reader);
}

TEST(nConsoleWin32, SaysThatItCannotWriteToAClosedPipe) {
    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
    ASSERT_TRUE(CreatePipe(&reader, &writer, nullptr, 0));
    CloseHandle(reader);
    const tRedirection redirection(STD_OUTPUT_HANDLE, writer);
    EXPECT_FALSE(nConsole::write(tStandardStream::output, "a"));
    CloseHandle(writer);
}

void showEveryCharacter() {
    const HANDLE screen = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(screen, INVALID_HANDLE_VALUE);
    const tRedirection redirection(STD_OUTPUT_HANDLE, screen);
    const COORD origin{0, 0};
    SetConsoleCursorPosition(screen, origin);
    EXPECT_TRUE(nConsole::isTerminal(tStandardStream::output));
    EXPECT_TRUE(nConsole::enableColours(tStandardStream::output));
    DWORD mode = 0;
    EXPECT_TRUE(GetConsoleMode(screen, &mode));
    EXPECT_NE(mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING, 0U);
    EXPECT_TRUE(nConsole::write(tStandardStream::output, "a\xC3\xA4\xD0\xB6\xE6\x8F\x92"));
    wchar_t characters[4];
    DWORD read = 0;
    EXPECT_TRUE(ReadConsoleOutputCharacterW(screen, characters, 4, origin, &read));
    EXPECT_EQ(std::wstring(characters, read), L"a\u00E4\u0436\u63D2");
    CloseHandle(screen);
}

TEST(nConsoleWin32, ShowsEveryCharacterOnAConsole) {
    if (support::tOwnProcess::isThis()) {
        showEveryCharacter();
        return;
    }
    const support::tOwnProcess process(L"nConsoleWin32.ShowsEveryCharacterOnAConsole", CREATE_NO_WINDOW);
    EXPECT_EQ(process.exitCode(), 0U) << "a process that has a console, but no window of it";
}

}  // namespace
