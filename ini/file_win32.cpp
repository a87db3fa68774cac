#include <windows.h>
// windows.h first, as everywhere.
#include <io.h>

#include "ini/file.h"

namespace nIni {

tFile openFile(const wchar_t* path) { return tFile(_wfopen(path, L"rb")); }

bool exists(const wchar_t* path) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(path, &found);
    if (search == INVALID_HANDLE_VALUE) return false;
    FindClose(search);
    return true;
}

std::uint64_t lastWriteTime(std::FILE* file) {
    FILETIME time{};
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
    if (GetFileTime(handle, nullptr, nullptr, &time) == FALSE) return 0;
    return std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime;
}

}  // namespace nIni
