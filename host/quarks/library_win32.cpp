#include <windows.h>

#include <string>

#include "quarks/errorMode.h"
#include "quarks/library.h"

namespace nLibrary {
namespace {

/// Returns an empty string if the text is not valid UTF-8.
std::wstring wideFromUtf8(const std::string& text) {
    const int size = static_cast<int>(text.size());
    // A text never has more UTF-16 units than UTF-8 bytes.
    std::wstring wide(text.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), size);
    wide.resize(static_cast<std::size_t>(length));
    return wide;
}

/// Returns an empty string if the code page lacks one of the characters; a look-alike does not count.
std::string narrowFromWide(const std::wstring& wide, UINT codePage) {
    constexpr std::size_t longestCharacter = 4;
    std::string narrow(wide.size() * longestCharacter, '\0');
    BOOL lost = FALSE;
    const int length = WideCharToMultiByte(codePage, WC_NO_BEST_FIT_CHARS, wide.data(), static_cast<int>(wide.size()),
                                           narrow.data(), static_cast<int>(narrow.size()), nullptr, &lost);
    narrow.resize(lost != FALSE ? 0 : static_cast<std::size_t>(length));
    return narrow;
}

/// Returns the UTF-8 path in the encoding that LoadLibraryExA expects: UTF-8 since version 1903 of Windows 10, which
/// honours the manifest's request, and the machine's code page before that. Returns an empty string if a character
/// would be lost.
std::string toSystemPath(const char* path) {
    const UINT codePage = GetACP();
    if (codePage == CP_UTF8) return path;
    return narrowFromWide(wideFromUtf8(path), codePage);
}

}  // namespace

tHandle load(const char* path, std::uint32_t& osError) {
    const std::string systemPath = toSystemPath(path);
    if (systemPath.empty() && *path != '\0') {
        osError = ERROR_NO_UNICODE_TRANSLATION;
        return nullptr;
    }
    const tErrorMode errorMode;
    const HMODULE module = LoadLibraryExA(systemPath.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (module == nullptr) osError = GetLastError();
    return module;
}

bool unload(tHandle library, std::uint32_t& osError) noexcept {
    const bool unloaded = FreeLibrary(static_cast<HMODULE>(library)) != FALSE;
    if (!unloaded) osError = GetLastError();
    return unloaded;
}

void* symbol(tHandle library, const char* name, std::uint32_t& osError) noexcept {
    const FARPROC address = GetProcAddress(static_cast<HMODULE>(library), name);
    if (address == nullptr) osError = GetLastError();
    return reinterpret_cast<void*>(address);
}

}  // namespace nLibrary
