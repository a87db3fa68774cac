#include <windows.h>

#include "stdpath/utf.h"
#include "tool/systemReason.h"

namespace nSystemReason {

std::string of(std::uint32_t error) {
    wchar_t text[512];
    DWORD size = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                                MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, 512, nullptr);
    while (size > 0 && (text[size - 1] == '\n' || text[size - 1] == '\r' || text[size - 1] == '.')) --size;
    return size > 0 ? nStdPath::fileNameToUtf8(std::u16string(text, text + size)) : "error " + std::to_string(error);
}

std::string last() { return of(GetLastError()); }

}  // namespace nSystemReason
