#include <windows.h>

#include "ownPath.h"

std::filesystem::path ownPath() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ownPath), &self);
    wchar_t path[1024] = {};
    GetModuleFileNameW(self, path, 1023);
    return path;
}
