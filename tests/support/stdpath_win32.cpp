#include <algorithm>
#include <string_view>

#include "stdpath/utf.h"
#include "tests/support/imports_win32.h"
#include "tests/support/stdpath.h"

namespace {

support::tSharedPlaces* current = nullptr;
int openedKey = 0;  // its address serves as the handle of the vendor's key

HKEY handle() { return reinterpret_cast<HKEY>(&openedKey); }

LSTATUS openKey(HKEY hive, const wchar_t* path, DWORD options, REGSAM access, HKEY* opened) {
    const bool known = current != nullptr && hive == HKEY_LOCAL_MACHINE &&
                       std::wstring_view(path) == L"SOFTWARE\\Corvell\\Common\\Installer";
    if (!known) return imports::RegOpenKeyExW.real(hive, path, options, access, opened);
    *opened = handle();
    return ERROR_SUCCESS;
}

LSTATUS queryValue(HKEY key, const wchar_t* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size) {
    if (key != handle()) return imports::RegQueryValueExW.real(key, name, reserved, type, data, size);
    if (std::wstring_view(name) != L"ZUSHAREDDIR64") return ERROR_FILE_NOT_FOUND;
    if (!current->sharedDirectory) return static_cast<LSTATUS>(current->sharedDirectoryError);
    const std::u16string value = nStdPath::fileNameFromUtf8(*current->sharedDirectory);
    const auto bytes = static_cast<DWORD>(value.size() * sizeof(char16_t));
    const bool fits = bytes <= *size;
    if (fits) std::copy_n(reinterpret_cast<const BYTE*>(value.data()), bytes, data);
    *size = bytes;
    return fits ? ERROR_SUCCESS : ERROR_MORE_DATA;
}

LSTATUS closeKey(HKEY key) { return key == handle() ? ERROR_SUCCESS : imports::RegCloseKey.real(key); }

HRESULT folderPath(HWND window, int csidl, HANDLE token, DWORD flags, wchar_t* path) {
    if (current == nullptr || csidl != CSIDL_COMMON_APPDATA) {
        return imports::SHGetFolderPathW.real(window, csidl, token, flags, path);
    }
    if (!current->appDataFolder) return current->appDataFolderError;
    const std::u16string folder = nStdPath::fileNameFromUtf8(*current->appDataFolder);
    std::copy_n(folder.begin(), std::min<std::size_t>(folder.size(), MAX_PATH - 1), path);
    return S_OK;
}

}  // namespace

namespace support {

tSharedPlaces::tSharedPlaces() {
    current = this;
    imports::RegOpenKeyExW.replace(openKey);
    imports::RegQueryValueExW.replace(queryValue);
    imports::RegCloseKey.replace(closeKey);
    imports::SHGetFolderPathW.replace(folderPath);
}

tSharedPlaces::~tSharedPlaces() { current = nullptr; }

}  // namespace support
