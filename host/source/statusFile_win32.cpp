#include <share.h>
#include <windows.h>

#include <ctime>
#include <cwchar>

#include "source/statusFile.h"

namespace nStatusFile {
namespace {

/// Returns the path for the wide calls, or an empty string if it cannot be converted. Invalid UTF-8 is rejected: with
/// replacement characters the path would name a different file.
std::wstring widen(const std::string& path) {
    const auto convert = [&path](wchar_t* wide, int capacity) {
        return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path.data(), static_cast<int>(path.size()), wide,
                                   capacity);
    };
    const int size = convert(nullptr, 0);
    if (size <= 0) return {};
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    if (convert(wide.data(), size) != size) return {};
    return wide;
}

}  // namespace

std::FILE* open(const std::string& path) {
    const std::wstring wide = widen(path);
    return wide.empty() ? nullptr : _wfsopen(wide.c_str(), L"w", _SH_DENYNO);
}

bool remove(const std::string& path) {
    const std::wstring wide = widen(path);
    return !wide.empty() && _wremove(wide.c_str()) == 0;
}

bool rename(const std::string& from, const std::string& to) {
    const std::wstring wideFrom = widen(from);
    const std::wstring wideTo = widen(to);
    return !wideFrom.empty() && !wideTo.empty() && _wrename(wideFrom.c_str(), wideTo.c_str()) == 0;
}

std::string currentTimeText() {
    const __time64_t now = _time64(nullptr);
    const char* const text = _ctime64(&now);
    return text == nullptr ? "\n" : text;
}

}  // namespace nStatusFile
