#include <windows.h>

#include "tool/status/terminal.h"

namespace nTerminal {
namespace {

/// Set by the console's own thread. It exists for good, because that thread may come late.
HANDLE endEvent() noexcept {
    static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return event;
}

BOOL WINAPI onConsoleEvent(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
    SetEvent(endEvent());
    return TRUE;
}

}  // namespace

std::size_t rows() noexcept {
    constexpr std::size_t usual = 24;
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) == FALSE) return usual;
    const int rows = info.srWindow.Bottom - info.srWindow.Top + 1;
    return static_cast<std::size_t>(rows);
}

tInterrupt::tInterrupt() {
    ResetEvent(endEvent());
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

tInterrupt::~tInterrupt() { SetConsoleCtrlHandler(onConsoleEvent, FALSE); }

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): it needs what the constructor has set up
bool tInterrupt::wait(std::chrono::milliseconds limit) {
    return WaitForSingleObject(endEvent(), static_cast<DWORD>(limit.count())) == WAIT_OBJECT_0;
}

}  // namespace nTerminal
