// Never shipped: lets the parser run under native tools.
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "ini/file.h"

namespace nIni {
namespace {

/// Empty, which names no file, when the path has no narrow form.
std::filesystem::path narrow(const wchar_t* path) {
    const std::wstring_view wide(path);
    try {
        // The library takes these for UTF-32 whatever the locale is, unlike wide characters.
        return std::u32string(wide.begin(), wide.end());
    } catch (const std::filesystem::filesystem_error&) {
        return {};
    }
}

}  // namespace

tFile openFile(const wchar_t* path) { return tFile(std::fopen(narrow(path).c_str(), "rb")); }

bool exists(const wchar_t* path) {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(narrow(path), ignored));
}

std::uint64_t lastWriteTime(std::FILE* file) {
    constexpr std::int64_t perSecond = 10'000'000;
    constexpr std::int64_t secondsFrom1601To1970 = 11'644'473'600;
    struct stat status {};
    if (fstat(fileno(file), &status) != 0) return 0;
    const std::int64_t since1601 = status.st_mtim.tv_sec + secondsFrom1601To1970;
    return static_cast<std::uint64_t>(since1601 * perSecond + status.st_mtim.tv_nsec / 100);
}

}  // namespace nIni
