// Takes the place of advapi32.dll in a copy of the executable, and ends the process at one of the steps by which it
// replaces the status file, as somebody who kills it would.
//
// KILL_AT_STEP=n in the environment names the step, counted from 1 over the whole life. A life that reaches its end
// exits with 1000 plus the number of its steps. A wait without a time limit returns at once, so a life needs no stop
// request.

#include <share.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "tests/endtoend/standin/redirect.h"

namespace {

int steps = 0;
int killAt = 0;
std::FILE* statusFile = nullptr;

int numberFrom(const char* variable) {
    const char* const text = std::getenv(variable);
    return text == nullptr ? 0 : std::atoi(text);
}

/// The process may end here.
bool stepIsTheLast() { return ++steps == killAt; }
void step() {
    if (stepIsTheLast()) TerminateProcess(GetCurrentProcess(), 1);
}

/// Each call of the replacement, with a step before it and one after it.

std::FILE* openFile(const wchar_t* path, const wchar_t* mode, int sharing) {
    step();
    statusFile = _wfsopen(path, mode, sharing);
    step();
    return statusFile;
}

std::size_t writeFile(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
    if (file != statusFile) return std::fwrite(data, size, count, file);
    step();
    // In the middle: half of it has reached the disk.
    if (stepIsTheLast()) {
        std::fwrite(data, size, count / 2, file);
        std::fflush(file);
        TerminateProcess(GetCurrentProcess(), 1);
    }
    const std::size_t written = std::fwrite(data, size, count, file);
    step();
    return written;
}

int closeFile(std::FILE* file) {
    if (file != statusFile) return std::fclose(file);
    step();
    const int result = std::fclose(file);
    statusFile = nullptr;
    step();
    return result;
}

int removeFile(const wchar_t* path) {
    step();
    const int result = _wremove(path);
    step();
    return result;
}

int renameFile(const wchar_t* from, const wchar_t* to) {
    step();
    const int result = _wrename(from, to);
    step();
    return result;
}

DWORD WINAPI waitShortly(HANDLE handle, DWORD milliseconds) {
    return milliseconds == INFINITE ? WAIT_OBJECT_0 : WaitForSingleObject(handle, milliseconds);
}

void attach() {
    killAt = numberFrom("KILL_AT_STEP");
    redirectImport("_wfsopen", openFile);
    redirectImport("fwrite", writeFile);
    redirectImport("fclose", closeFile);
    redirectImport("_wremove", removeFile);
    redirectImport("_wrename", renameFile);
    redirectImport("WaitForSingleObject", waitShortly);
}

}  // namespace

/// A life that reaches its end tells how many steps it took.
extern "C" BOOL WINAPI DllMain(HINSTANCE /*self*/, DWORD reason, LPVOID /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) attach();
    if (reason == DLL_PROCESS_DETACH) TerminateProcess(GetCurrentProcess(), 1000 + static_cast<UINT>(steps));
    return TRUE;
}
