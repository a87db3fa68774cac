#include "tests/endtoend/harness/registry.h"

namespace endtoend::registry {
namespace {

constexpr const wchar_t* keyPath = L"SOFTWARE\\Corvell\\Common\\Installer";
constexpr const wchar_t* valueName = L"ZUSHAREDDIR64";

/// Keeps a key that still contains values or keys.
void removeIfEmpty(const wchar_t* path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    DWORD values = 0;
    RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, nullptr, nullptr, nullptr,
                     nullptr);
    RegCloseKey(key);
    if (values == 0) RegDeleteKeyW(HKEY_LOCAL_MACHINE, path);
}

}  // namespace

void setSharedDirectory(std::wstring_view text) {
    const std::wstring terminated(text);
    const LSTATUS error = RegSetKeyValueW(HKEY_LOCAL_MACHINE, keyPath, valueName, REG_SZ, terminated.c_str(),
                                          static_cast<DWORD>((terminated.size() + 1) * sizeof(wchar_t)));
    if (error != ERROR_SUCCESS) failed("RegSetKeyValueW", static_cast<DWORD>(error));
}

void removeKey() {
    removeValue();
    for (const wchar_t* path : {keyPath, L"SOFTWARE\\Corvell\\Common", L"SOFTWARE\\Corvell"}) removeIfEmpty(path);
}

void removeValue() { RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, keyPath, valueName); }

bool hasSharedDirectory() {
    return RegGetValueW(HKEY_LOCAL_MACHINE, keyPath, valueName, RRF_RT_ANY, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

}  // namespace endtoend::registry
