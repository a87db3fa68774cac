// The service never ships with this: the letters of systems other than Windows.
#include <clocale>
#include <cwctype>
#include <memory>
#include <type_traits>

#include "tool/check/upperCase.h"

namespace nUpperCase {
namespace {

struct tFree {
    void operator()(locale_t locale) const noexcept { freelocale(locale); }
};
using tLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, tFree>;

/// Returns the locale whose tables know all letters, or null if it is missing.
locale_t unicode() noexcept {
    static const tLocale locale(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr));
    return locale.get();
}

}  // namespace

char16_t toUpper(char16_t unit) noexcept {
    if (unit < 0x80) return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 0x20) : unit;
    if (unicode() == nullptr) return unit;
    const std::wint_t upper = towupper_l(unit, unicode());
    return upper <= 0xFFFF ? static_cast<char16_t>(upper) : unit;
}

}  // namespace nUpperCase
