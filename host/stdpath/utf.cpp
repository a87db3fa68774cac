#include "stdpath/utf.h"

#include <array>
#include <bit>
#include <cstddef>

namespace nStdPath {
namespace {

constexpr bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// Subtracted from first * 1024 + second: the tags of both surrogates, less the 0x10000 that the encoding omits.
constexpr char32_t surrogateBias = 0xD800 * 1024 + 0xDC00 - 0x10000;
static_assert(surrogateBias == 0x35FDC00);

constexpr char32_t replacementCharacter = 0xFFFD;

void appendTail(std::string& result, char32_t codePoint, int shift) {
    for (; shift >= 0; shift -= 6) result += static_cast<char>(0x80 | (codePoint >> shift & 0x3F));
}

void appendUtf8(std::string& result, char32_t codePoint) {
    if (codePoint < 0x80) {
        result += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        result += static_cast<char>(0xC0 | codePoint >> 6);
        appendTail(result, codePoint, 0);
    } else if (codePoint < 0x10000) {
        result += static_cast<char>(0xE0 | codePoint >> 12);
        appendTail(result, codePoint, 6);
    } else {
        result += static_cast<char>(0xF0 | codePoint >> 18);
        appendTail(result, codePoint, 12);
    }
}

/// `isSecond` returns whether the unit after a high surrogate is the second half of its pair.
template <class IsSecond>
void append(std::string& result, const char16_t* at, const char16_t* end, IsSecond isSecond) {
    while (at != end) {
        char32_t codePoint = *at++;
        if (isHighSurrogate(codePoint) && at != end && isSecond(*at)) {
            codePoint = codePoint * 1024 + *at++ - surrogateBias;
        }
        appendUtf8(result, codePoint);
    }
}

/// Removes and returns the first character; if the text begins with none, removes one byte and returns U+FFFD.
/// Requires: the text is not empty.
char32_t takeCodePoint(std::string_view& text) {
    constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};  // by length; a smaller one is overlong
    const auto lead = static_cast<unsigned char>(text.front());
    const auto ones = static_cast<std::size_t>(std::countl_one(lead));
    const std::size_t length = ones == 0 ? 1 : ones;
    bool valid = ones != 1 && length < smallest.size() && length <= text.size();

    char32_t codePoint = lead & (0x7FU >> ones);
    for (std::size_t i = 1; valid && i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        valid = (byte & 0xC0) == 0x80;
        codePoint = codePoint << 6 | (byte & 0x3F);
    }
    valid = valid && codePoint >= smallest[length] && codePoint <= 0x10FFFF;
    text.remove_prefix(valid ? length : 1);
    return valid ? codePoint : replacementCharacter;
}

}  // namespace

void wideToUtf8(const char16_t* begin, const char16_t* end, std::string& result) {
    append(result, begin, end, [](char16_t /*unit*/) { return true; });
}

std::string fileNameToUtf8(std::u16string_view name) {
    std::string text;
    append(text, name.data(), name.data() + name.size(), isLowSurrogate);
    return text;
}

std::u16string fileNameFromUtf8(std::string_view text) {
    std::u16string name;
    while (!text.empty()) {
        const char32_t codePoint = takeCodePoint(text);
        if (codePoint >= 0x10000) {
            name += static_cast<char16_t>(0xD800 + (codePoint - 0x10000) / 1024);
            name += static_cast<char16_t>(0xDC00 + codePoint % 1024);
        } else {
            name += static_cast<char16_t>(codePoint);
        }
    }
    return name;
}

}  // namespace nStdPath
