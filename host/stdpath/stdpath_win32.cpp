#include <windows.h>
// windows.h first: shlobj.h needs its types.
#include <shlobj.h>

#include <memory>
#include <type_traits>

#include "quarks/closer.h"
#include "quarks/errorMode.h"
#include "stdpath/folders.h"
#include "stdpath/stdpath.h"
#include "stdpath/systemError.h"

namespace nStdPath {
namespace {

// The source lines that reports name.
constexpr std::int32_t openLine = 232;
constexpr std::int32_t queryLine = 256;
constexpr std::int32_t folderLine = 293;

wchar_t* asWide(char16_t* text) { return reinterpret_cast<wchar_t*>(text); }
const wchar_t* asWide(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }

using tMessage = std::unique_ptr<char, tCloser<LocalFree>>;
using tRegistryKey = std::unique_ptr<std::remove_pointer_t<HKEY>, tCloser<RegCloseKey>>;

/// Returns the system's text for an error code, or null if it has none.
tMessage systemMessage(DWORD code) noexcept {
    char* text = nullptr;
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                   code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<LPSTR>(&text), 0, nullptr);
    return tMessage(text);
}

void raiseWin32Error(zuerr::StatusRecord& status, std::int32_t line, LSTATUS result, const char* description) {
    if (status.failed()) return;
    const auto code = static_cast<DWORD>(result);
    raiseSystemError(status, line, {tSystemError::tKind::win32, code, systemMessage(code).get()}, description);
}

/// Reads the whole value, which may grow between two system calls. Returns the result of the last one.
LSTATUS queryValue(HKEY key, const char16_t* valueName, tWideBuffer& wideBuffer, zuerr::StatusRecord& status) {
    DWORD size = 512;
    LSTATUS result = ERROR_MORE_DATA;
    while (result == ERROR_MORE_DATA) {
        // The system may write all `size` bytes, so round an odd size up; the last resize drops the odd byte.
        if (!wideBuffer.resize((std::size_t{size} + 1) / sizeof(char16_t), status)) return result;
        result = RegQueryValueExW(key, asWide(valueName), nullptr, nullptr, reinterpret_cast<BYTE*>(wideBuffer.data()),
                                  &size);
    }
    wideBuffer.resize(size / sizeof(char16_t), status);
    return result;
}

/// Loads shell32 on the first call instead of importing it: it and its dependencies would take longer to load than
/// everything else at the start. It then stays loaded. Returns null and sets the thread's last error if it cannot be
/// loaded.
HMODULE shell32() {
    const std::wstring folder = systemFolder();
    if (folder.empty()) return nullptr;
    const std::wstring path = folder + L"\\shell32.dll";
    const HMODULE loaded = GetModuleHandleW(path.c_str());
    return loaded != nullptr ? loaded : LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

/// Calls SHGetFolderPathW. Returns a failure if shell32 cannot be loaded; the next call then tries again.
HRESULT getFolderPath(std::int32_t csidl, wchar_t* path) {
    const tErrorMode errorMode;
    const HMODULE library = shell32();
    const FARPROC entry = library == nullptr ? nullptr : GetProcAddress(library, "SHGetFolderPathW");
    if (entry == nullptr) {
        const HRESULT result = HRESULT_FROM_WIN32(GetLastError());
        return FAILED(result) ? result : E_FAIL;
    }
    // Cast through void*: compilers warn about casts between different function types.
    const auto function = reinterpret_cast<decltype(&SHGetFolderPathW)>(reinterpret_cast<void*>(entry));
    return function(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, path);
}

}  // namespace

void readRegistryString(const char16_t* keyPath, const char16_t* valueName, std::uint32_t /*flags*/,
                        tWideBuffer& wideBuffer, zuerr::StatusRecord& status) {
    if (status.failed()) return;
    HKEY opened = nullptr;
    LSTATUS result = RegOpenKeyExW(HKEY_LOCAL_MACHINE, asWide(keyPath), 0, KEY_READ, &opened);
    if (result != ERROR_SUCCESS) {
        raiseWin32Error(status, openLine, result, "RegOpenKeyEx failed");
        return;
    }
    const tRegistryKey key(opened);
    result = queryValue(key.get(), valueName, wideBuffer, status);
    if (result != ERROR_SUCCESS) raiseWin32Error(status, queryLine, result, "RegQueryValue failed");
}

void getKnownFolder(std::int32_t csidl, tWideBuffer& wideBuffer, zuerr::StatusRecord& status) {
    if (!wideBuffer.resize(MAX_PATH, status)) return;
    const HRESULT result = getFolderPath(csidl, asWide(wideBuffer.data()));
    if (result == S_OK) return;
    raiseSystemError(status, folderLine, {tSystemError::tKind::hresult, static_cast<std::uint32_t>(result)},
                     "SHGetFolderPathW failed");
}

}  // namespace nStdPath
