// Both ways between UTF-16 and UTF-8. The input is taken for UTF-16 first and for UTF-8 then.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "stdpath/utf.h"

namespace {

void require(bool truth) {
    if (!truth) std::abort();
}

/// The code points of a text that the system keeps, by the rule written plainly.
std::vector<std::uint32_t> codePoints(const std::u16string& text) {
    std::vector<std::uint32_t> result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t codePoint = text[i];
        if (codePoint >= 0xD800 && codePoint <= 0xDBFF && i + 1 < text.size()) {
            codePoint = codePoint * 1024 + text[++i] - 0x35FDC00;
        }
        result.push_back(codePoint);
    }
    return result;
}

/// Reads well-formed UTF-8, surrogates and what lies above U+10FFFF included.
std::vector<std::uint32_t> decoded(std::string_view utf8) {
    std::vector<std::uint32_t> result;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<std::uint8_t>(utf8[i++]);
        const int tail = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        require(lead < 0x80 || (lead >= 0xC2 && lead < 0xF8));
        std::uint32_t codePoint = tail == 0 ? lead : lead & (0x3FU >> tail);
        for (int left = tail; left > 0; --left) {
            require(i < utf8.size() && (static_cast<std::uint8_t>(utf8[i]) & 0xC0) == 0x80);
            codePoint = codePoint << 6 | (static_cast<std::uint8_t>(utf8[i++]) & 0x3F);
        }
        require(tail == (codePoint < 0x80 ? 0 : codePoint < 0x800 ? 1 : codePoint < 0x10000 ? 2 : 3));
        result.push_back(codePoint);
    }
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A copy of the exact size, so that a step beyond it is seen.
    std::vector<char16_t> wide(size / sizeof(char16_t));
    if (!wide.empty()) std::memcpy(wide.data(), data, wide.size() * sizeof(char16_t));
    const std::u16string units(wide.begin(), wide.end());

    std::string text;
    nStdPath::wideToUtf8(wide.data(), wide.data() + wide.size(), text);
    require(decoded(text) == codePoints(units));

    require(nStdPath::fileNameFromUtf8(nStdPath::fileNameToUtf8(units)) == units);

    // A text that is no UTF-8 becomes one, and stays what it is from then on.
    const std::u16string name = nStdPath::fileNameFromUtf8({reinterpret_cast<const char*>(data), size});
    const std::string shown = nStdPath::fileNameToUtf8(name);
    decoded(shown);
    require(nStdPath::fileNameFromUtf8(shown) == name);
    return 0;
}
