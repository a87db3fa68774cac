#include "tests/support/debugger.h"
#include "tests/support/imports_win32.h"

std::string debuggerOutput(const std::function<void()>& action) {
    std::string output;
    imports::OutputDebugStringA.replace([&](LPCSTR line) { output += line; });
    action();
    imports::ImportBase::restoreAll();
    return output;
}
