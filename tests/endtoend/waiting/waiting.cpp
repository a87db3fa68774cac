// Stands in for shell32.dll in a copy of the executable that the tests have altered to be bound to this library
// instead. The product asks it for a folder each time that it writes the status file, so it can be held there, once
// its first or its last report to the service control manager is out and before the next.

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/plugins/gate.h"

namespace {

std::filesystem::path besideTheExecutable(const std::wstring& name) {
    wchar_t path[1024] = {};
    GetModuleFileNameW(nullptr, path, 1023);
    return std::filesystem::path(path).parent_path() / name;
}

}  // namespace

extern "C" {

/// The system's own, behind the gate "SHGetFolderPathW.N" beside the executable, N counting the calls from 1.
__declspec(dllexport) HRESULT WINAPI SHGetFolderPathW(HWND window, int folder, HANDLE token, DWORD flags, LPWSTR path) {
    static int calls = 0;
    waitAtGate(besideTheExecutable(L"SHGetFolderPathW." + std::to_wstring(++calls)));
    if (std::filesystem::exists(besideTheExecutable(L"SHGetFolderPathW.fails"))) return E_FAIL;
    using Function = HRESULT(WINAPI*)(HWND, int, HANDLE, DWORD, LPWSTR);
    const FARPROC original = GetProcAddress(LoadLibraryA("shell32.dll"), "SHGetFolderPathW");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(original))(window, folder, token, flags, path);
}

/// A console handler has done its work when the thread ends that the system made for it.
BOOL WINAPI DllMain(HINSTANCE /*self*/, DWORD reason, LPVOID /*reserved*/) {
    if (reason == DLL_THREAD_DETACH) std::ofstream(besideTheExecutable(L"threads.ended"), std::ios::app).put('x');
    return TRUE;
}
}
