#include <windows.h>

#include <filesystem>

#include "ownName.h"

std::string ownName() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ownName), &self);
    wchar_t path[1024] = {};
    GetModuleFileNameW(self, path, 1023);
    const std::u8string name = std::filesystem::path(path).stem().u8string();
    return {name.begin(), name.end()};
}
