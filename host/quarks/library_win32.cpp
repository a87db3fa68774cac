#include <windows.h>

#include "quarks/library.h"

namespace nLibrary {

Handle load(const char* path, std::uint32_t& osError) noexcept {
    const HMODULE module = LoadLibraryExA(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (module == nullptr) osError = GetLastError();
    return module;
}

bool unload(Handle library, std::uint32_t& osError) noexcept {
    const bool unloaded = FreeLibrary(static_cast<HMODULE>(library)) != FALSE;
    if (!unloaded) osError = GetLastError();
    return unloaded;
}

void* symbol(Handle library, const char* name, std::uint32_t& osError) noexcept {
    const FARPROC address = GetProcAddress(static_cast<HMODULE>(library), name);
    if (address == nullptr) osError = GetLastError();
    return reinterpret_cast<void*>(address);
}

}  // namespace nLibrary
