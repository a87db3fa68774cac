#include <windows.h>

#include <algorithm>
#include <string>

#include "stdpath/utf.h"
#include "tool/console.h"

namespace nConsole {
namespace {

HANDLE handleOf(tStandardStream stream) noexcept {
    return GetStdHandle(stream == tStandardStream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

/// A console shows what it is given as UTF-16, whatever its code page.
bool writeToConsole(HANDLE console, std::string_view text) {
    const std::u16string wide = nStdPath::fileNameFromUtf8(text);
    DWORD written = 0;
    return WriteConsoleW(console, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr) != FALSE &&
           written == wide.size();
}

}  // namespace

bool isTerminal(tStandardStream stream) noexcept {
    DWORD mode = 0;
    return GetConsoleMode(handleOf(stream), &mode) != FALSE;
}

bool enableColours(tStandardStream stream) noexcept {
    const HANDLE console = handleOf(stream);
    DWORD mode = 0;
    if (GetConsoleMode(console, &mode) == FALSE) return false;
    return SetConsoleMode(console, mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
}

bool write(tStandardStream stream, std::string_view text) {
    const HANDLE handle = handleOf(stream);
    if (isTerminal(stream)) return writeToConsole(handle, text);
    while (!text.empty()) {
        DWORD written = 0;
        const auto size = static_cast<DWORD>(std::min<std::size_t>(text.size(), 0x10000000));
        if (WriteFile(handle, text.data(), size, &written, nullptr) == FALSE || written == 0) return false;
        text.remove_prefix(written);
    }
    return true;
}

}  // namespace nConsole
