#include <windows.h>

#include "quarks/errorMode.h"
#include "source/nDeploymentPlatform.h"
#include "stdpath/folders.h"

namespace nDeployment {
namespace {

HMODULE loadFrom(const std::wstring& folder) {
    if (folder.empty()) return nullptr;
    const std::wstring path = folder + L"\\zusysapi.dll";
    return LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

HMODULE loadFramework() {
    const tErrorMode errorMode;
    const HMODULE library = LoadLibraryExA(nZusysapi::libraryName, nullptr,
                                           LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library != nullptr || GetLastError() != ERROR_INVALID_PARAMETER) return library;

    // Windows 7 without update KB2533623 rejects these flags: try the same folders one by one.
    const HMODULE besideTheExecutable = loadFrom(nStdPath::applicationFolder());
    if (besideTheExecutable != nullptr) return besideTheExecutable;
    return loadFrom(nStdPath::systemFolder());
}

nZusysapi::InstantiateFramework2 findEntry(HMODULE library) noexcept {
    const FARPROC entry = GetProcAddress(library, nZusysapi::entryName);
    // Cast through void*: compilers warn about casts between different function types.
    return reinterpret_cast<nZusysapi::InstantiateFramework2>(reinterpret_cast<void*>(entry));
}

}  // namespace

nZusysapi::InstantiateFramework2 findFrameworkEntry() {
    // Usually loaded by an earlier attempt, whose reference is never released.
    if (const HMODULE loaded = GetModuleHandleA(nZusysapi::libraryName); loaded != nullptr) return findEntry(loaded);

    const HMODULE library = loadFramework();
    if (library == nullptr) return nullptr;
    const nZusysapi::InstantiateFramework2 entry = findEntry(library);
    if (entry == nullptr) FreeLibrary(library);
    return entry;
}

void sleepMs(std::uint32_t milliseconds) noexcept { Sleep(milliseconds); }

}  // namespace nDeployment
