#include <windows.h>

#include "tool/check/upperCase.h"

namespace nUpperCase {

char16_t toUpper(char16_t unit) noexcept {
    const auto from = static_cast<wchar_t>(unit);
    wchar_t upper = from;
    const int length = LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, &from, 1, &upper, 1, nullptr, nullptr, 0);
    return length == 1 ? static_cast<char16_t>(upper) : unit;
}

}  // namespace nUpperCase
