#include <windows.h>

#include "tool/interruption.h"

namespace nInterruption {
namespace {

BOOL WINAPI ignore(DWORD event) { return event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT ? TRUE : FALSE; }

struct tIgnored {
    tIgnored() noexcept { SetConsoleCtrlHandler(ignore, TRUE); }
    ~tIgnored() { SetConsoleCtrlHandler(ignore, FALSE); }
    tIgnored(const tIgnored&) = delete;
    tIgnored& operator=(const tIgnored&) = delete;
};

}  // namespace

void withhold(const std::function<void()>& action) {
    const tIgnored ignored;
    action();
}

}  // namespace nInterruption
