#include <windows.h>

#include "ini/file.h"

namespace nIni {

tFile openFile(const wchar_t* path) { return tFile(_wfopen(path, L"rb")); }

std::optional<std::uint64_t> lastWriteTime(const wchar_t* path) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(path, &found);
    if (search == INVALID_HANDLE_VALUE) return std::nullopt;
    FindClose(search);
    return std::uint64_t{found.ftLastWriteTime.dwHighDateTime} << 32U | found.ftLastWriteTime.dwLowDateTime;
}

}  // namespace nIni
