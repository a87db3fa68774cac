// Never shipped: lets the parser run under native tools.
#include <chrono>
#include <filesystem>
#include <ratio>
#include <string>
#include <string_view>

#include "ini/file.h"

namespace nIni {
namespace {

/// Returns an empty path, which names no file, if the path has no narrow form.
std::filesystem::path narrow(const wchar_t* path) {
    const std::wstring_view wide(path);
    try {
        // The library treats these as UTF-32 in every locale, unlike wide characters.
        return std::u32string(wide.begin(), wide.end());
    } catch (const std::filesystem::filesystem_error&) {
        return {};
    }
}

}  // namespace

tFile openFile(const wchar_t* path) { return tFile(std::fopen(narrow(path).c_str(), "rb")); }

std::optional<std::uint64_t> lastWriteTime(const wchar_t* path) {
    // As on Windows, a link to nothing is a file too. Its time is not available, so it is 0.
    std::error_code error;
    if (!exists(std::filesystem::symlink_status(narrow(path), error))) return std::nullopt;
    const auto time = std::filesystem::last_write_time(narrow(path), error);
    if (error) return 0;
    using tFileTime = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    const auto since1970 = std::chrono::file_clock::to_sys(time).time_since_epoch();
    const tFileTime from1601To1970 = std::chrono::seconds(11'644'473'600);
    return static_cast<std::uint64_t>((std::chrono::floor<tFileTime>(since1970) + from1601To1970).count());
}

}  // namespace nIni
