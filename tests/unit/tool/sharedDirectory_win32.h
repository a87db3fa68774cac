#pragma once

#include <windows.h>

#include <string>

namespace support {

/// The registry value that names the shared directory, restored on destruction.
class tSharedDirectory {
public:
    explicit tSharedDirectory(const std::wstring* value) {
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &opened_, nullptr);
        if (value == nullptr) {
            RegDeleteValueW(opened_, name);
        } else {
            const auto size = static_cast<DWORD>((value->size() + 1) * sizeof(wchar_t));
            RegSetValueExW(opened_, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value->c_str()), size);
        }
    }
    ~tSharedDirectory() {
        RegDeleteValueW(opened_, name);
        RegCloseKey(opened_);
    }
    tSharedDirectory(const tSharedDirectory&) = delete;
    tSharedDirectory& operator=(const tSharedDirectory&) = delete;

private:
    static constexpr const wchar_t* key = L"SOFTWARE\\Corvell\\Common\\Installer";
    static constexpr const wchar_t* name = L"ZUSHAREDDIR64";
    HKEY opened_ = nullptr;
};

}  // namespace support
