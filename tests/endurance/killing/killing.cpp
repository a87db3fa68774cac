// Stands in for shell32.dll in a copy of the executable, and gets between the executable and the calls by which it
// replaces the status file: it alters the executable's import table in memory, the program's own code stays what it is.
//
// Told by the environment, it ends the process, as somebody who kills it would, at one of the steps of the
// replacements: KILL_AT_STEP=n, counted from 1 over the whole life. A life that comes to its end exits with 1000 and
// the number of its steps. A wait without a time limit ends at once, so a life takes no stop request.
//
// KILL_READY names an event that is set once the process is about to run.

#include <share.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

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

/// Each call of the replacement, with a step before and a step behind it.

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

struct tRedirection {
    const char* name;
    void* replacement;
};

template <class Function>
void* address(Function* function) {
    return reinterpret_cast<void*>(function);
}

/// Looks at every import of the executable by name.
void redirect(const tRedirection& redirection) {
    auto* const base = reinterpret_cast<std::byte*>(GetModuleHandleW(nullptr));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + imports); library->Name != 0; ++library) {
        auto* name = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* slot = reinterpret_cast<void**>(base + library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            const auto* const import = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (std::string(&import->Name[0]) != redirection.name) continue;
            DWORD before = 0;
            VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
            *slot = redirection.replacement;
            VirtualProtect(slot, sizeof *slot, before, &before);
        }
    }
}

void attach() {
    killAt = numberFrom("KILL_AT_STEP");
    for (const tRedirection& redirection : {tRedirection{"_wfsopen", address(openFile)},
                                            {"fwrite", address(writeFile)},
                                            {"fclose", address(closeFile)},
                                            {"_wremove", address(removeFile)},
                                            {"_wrename", address(renameFile)},
                                            {"WaitForSingleObject", address(waitShortly)}}) {
        redirect(redirection);
    }
    const char* const ready = std::getenv("KILL_READY");
    const HANDLE event = ready == nullptr ? nullptr : OpenEventA(EVENT_MODIFY_STATE, FALSE, ready);
    if (event == nullptr) return;
    SetEvent(event);
    CloseHandle(event);
}

}  // namespace

extern "C" {

__declspec(dllexport) HRESULT WINAPI SHGetFolderPathW(HWND window, int folder, HANDLE token, DWORD flags, LPWSTR path) {
    using Function = HRESULT(WINAPI*)(HWND, int, HANDLE, DWORD, LPWSTR);
    const FARPROC original = GetProcAddress(LoadLibraryA("shell32.dll"), "SHGetFolderPathW");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(original))(window, folder, token, flags, path);
}

/// A life that has come to its end tells how many steps it took.
BOOL WINAPI DllMain(HINSTANCE /*self*/, DWORD reason, LPVOID /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) attach();
    if (reason == DLL_PROCESS_DETACH) TerminateProcess(GetCurrentProcess(), 1000 + static_cast<UINT>(steps));
    return TRUE;
}
}
