#pragma once

#include <windows.h>

#include <cstddef>
#include <string_view>

/// For libraries that take the place of advapi32.dll in a copy of the executable, forward its functions (advapi32.def),
/// and change what other imported functions do. The executable's own code stays as it is.

/// Sends the executable's calls of an imported function to `replacement`. Call it from DllMain: by then the loader has
/// bound the executable, and nothing of it has run. Returns whether the executable imports the function.
template <class Function>
bool redirectImport(std::string_view function, Function* replacement) {
    auto* const base = reinterpret_cast<std::byte*>(GetModuleHandleW(nullptr));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + table); library->Name != 0; ++library) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-union-access): windows.h declares it so
        const auto* name = reinterpret_cast<const ULONG_PTR*>(base + library->OriginalFirstThunk);
        auto* slot = reinterpret_cast<void**>(base + library->FirstThunk);
        for (; *name != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(*name)) continue;
            const auto* const import = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + *name);
            if (function != &import->Name[0]) continue;
            DWORD protection = 0;
            VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
            *slot = reinterpret_cast<void*>(replacement);
            VirtualProtect(slot, sizeof *slot, protection, &protection);
            return true;
        }
    }
    return false;
}
