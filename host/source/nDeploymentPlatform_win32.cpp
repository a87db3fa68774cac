#include <windows.h>

#include "source/nDeploymentPlatform.h"

namespace nDeployment {
namespace {

nZusysapi::InstantiateFramework2 findEntry(HMODULE library) noexcept {
    const FARPROC entry = GetProcAddress(library, nZusysapi::entryName);
    // By way of void*: compilers warn of a cast between function types that differ.
    return reinterpret_cast<nZusysapi::InstantiateFramework2>(reinterpret_cast<void*>(entry));
}

}  // namespace

nZusysapi::InstantiateFramework2 findFrameworkEntry() noexcept {
    // Loaded already, by an earlier attempt as a rule: the reference taken then is kept for good.
    if (const HMODULE loaded = GetModuleHandleA(nZusysapi::libraryName); loaded != nullptr) return findEntry(loaded);

    const HMODULE library = LoadLibraryExA(nZusysapi::libraryName, nullptr,
                                           LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library == nullptr) return nullptr;
    const nZusysapi::InstantiateFramework2 entry = findEntry(library);
    if (entry == nullptr) FreeLibrary(library);
    return entry;
}

void sleepMs(std::uint32_t milliseconds) noexcept { Sleep(milliseconds); }

}  // namespace nDeployment
