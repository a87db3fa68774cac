#include <windows.h>

#include "stdpath/utf.h"
#include "tool/format.h"
#include "tool/install/lookAt.h"
#include "tool/install/perform.h"
#include "tool/install/system.h"

namespace nInstall {

std::string reasonOf(std::uint32_t error) {
    wchar_t text[512];
    DWORD size = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                                MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, 512, nullptr);
    while (size > 0 && (text[size - 1] == '\n' || text[size - 1] == '\r' || text[size - 1] == '.')) --size;
    if (size == 0) return fmt::format("error {}", error);
    return fmt::format("{} ({})", nStdPath::fileNameToUtf8(std::u16string(text, text + size)), error);
}

tSystem thisSystem(const tAccess& access) {
    return {[access] { return lookAt(access); }, [access](const tStep& step) { return perform(step, access); },
            reasonOf};
}

}  // namespace nInstall
