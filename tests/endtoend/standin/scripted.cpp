// Takes the place of advapi32.dll in a copy of the executable. Files beside the copy tell it which calls to hold,
// and it leaves files there that tell what has been called.

#include <share.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/endtoend/standin/redirect.h"
#include "tests/plugins/gate.h"

namespace {

std::filesystem::path besideTheExecutable(const std::wstring& name) {
    wchar_t path[1024] = {};
    GetModuleFileNameW(nullptr, path, 1023);
    return std::filesystem::path(path).parent_path() / name;
}

std::ofstream appendTo(const wchar_t* name) {
    std::ofstream file(besideTheExecutable(name), std::ios::app);
    return file;
}

/// The status file is opened for writing after the gate "status.N", where N counts from 1.
std::FILE* openShared(const wchar_t* path, const wchar_t* mode, int sharing) {
    static int calls = 0;
    waitAtGate(besideTheExecutable(L"status." + std::to_wstring(++calls)));
    return _wfsopen(path, mode, sharing);
}

/// A pause takes no time, but is written to the file "pauses", and waits at the gate "pause.N".
void WINAPI sleep(DWORD milliseconds) {
    static int calls = 0;
    appendTo(L"pauses") << milliseconds << '\n';
    waitAtGate(besideTheExecutable(L"pause." + std::to_wstring(++calls)));
}

}  // namespace

/// The file "environment" contains variables as lines of NAME=VALUE. A service inherits none from the test program.
void setEnvironment() {
    std::ifstream lines(besideTheExecutable(L"environment"));
    for (std::string line; std::getline(lines, line);) _putenv(line.c_str());
}

/// A console handler has finished when the thread that the system made for it ends.
extern "C" BOOL WINAPI DllMain(HINSTANCE /*self*/, DWORD reason, LPVOID /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) {
        setEnvironment();
        return redirectImport("_wfsopen", openShared) && redirectImport("Sleep", sleep) ? TRUE : FALSE;
    }
    if (reason == DLL_THREAD_DETACH) appendTo(L"threads.ended").put('x');
    return TRUE;
}
