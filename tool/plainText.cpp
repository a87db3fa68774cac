#include "tool/plainText.h"

#include <algorithm>
#include <array>
#include <bit>

namespace nPlainText {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";
constexpr std::string_view ellipsis = "\xE2\x80\xA6";

struct tCharacter {
    char32_t codePoint = 0;
    std::size_t size = 1;  ///< in bytes
    bool valid = false;
};

struct tRange {
    char32_t first;
    char32_t last;
};

/// Returns whether one of the ranges, which are sorted, contains the character.
template <std::size_t Count>
bool contains(const std::array<tRange, Count>& ranges, char32_t codePoint) {
    const auto range = std::lower_bound(ranges.begin(), ranges.end(), codePoint,
                                        [](const tRange& r, char32_t value) { return r.last < value; });
    return range != ranges.end() && range->first <= codePoint;
}

// C0 and C1 controls and DEL; direction marks, embeddings, overrides and isolates; line and paragraph separators.
constexpr std::array<tRange, 6> controls{
    {{0, 0x1F}, {0x7F, 0x9F}, {0x61C, 0x61C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}}};
// Combining marks and joiners, as far as names may plausibly contain them.
constexpr std::array<tRange, 7> marks{{{0x300, 0x36F},
                                       {0x483, 0x489},
                                       {0x591, 0x5BD},
                                       {0x200B, 0x200D},
                                       {0x20D0, 0x20FF},
                                       {0xFE00, 0xFE0F},
                                       {0xFEFF, 0xFEFF}}};
// East Asian wide and full-width characters, and pictographs.
constexpr std::array<tRange, 11> wides{{{0x1100, 0x115F},
                                        {0x2E80, 0x303E},
                                        {0x3041, 0xA4CF},
                                        {0xAC00, 0xD7A3},
                                        {0xF900, 0xFAFF},
                                        {0xFE30, 0xFE6F},
                                        {0xFF00, 0xFF60},
                                        {0xFFE0, 0xFFE6},
                                        {0x1F300, 0x1F64F},
                                        {0x1F900, 0x1F9FF},
                                        {0x20000, 0x3FFFD}}};

/// Requires: the text is not empty. Accepts what RFC 3629 does: no overlong forms, no surrogates.
tCharacter firstCharacter(std::string_view text) {
    constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};  // by size
    const auto lead = static_cast<unsigned char>(text.front());
    const auto ones = static_cast<std::size_t>(std::countl_one(lead));
    const std::size_t size = ones == 0 ? 1 : ones;
    if (ones == 1 || size >= smallest.size() || size > text.size()) return {};
    char32_t codePoint = lead & (0x7FU >> ones);
    for (std::size_t i = 1; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0U) != 0x80U) return {};
        codePoint = codePoint << 6U | (byte & 0x3FU);
    }
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (codePoint < smallest[size] || codePoint > 0x10FFFF || surrogate) return {};
    return {codePoint, size, true};
}

template <class Accepts>
std::string replaced(std::string_view text, Accepts accepts) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const tCharacter character = firstCharacter(text);
        result.append(character.valid && accepts(character) ? text.substr(0, character.size) : replacement);
        text.remove_prefix(character.size);
    }
    return result;
}

std::size_t columnsOf(char32_t codePoint) {
    if (contains(marks, codePoint)) return 0;
    return contains(wides, codePoint) ? 2 : 1;
}

}  // namespace

bool isPlain(std::string_view text) noexcept {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

std::string valid(std::string_view text) {
    if (isPlain(text)) return std::string(text);
    return replaced(text, [](const tCharacter& /*any*/) { return true; });
}

std::string printable(std::string_view text) {
    if (isPlain(text)) return std::string(text);
    return replaced(text, [](const tCharacter& character) { return !contains(controls, character.codePoint); });
}

std::string printableInXml(std::string_view text) {
    std::string result = printable(text);
    for (const std::string_view excluded : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {  // U+FFFE and U+FFFF
        for (std::size_t at = result.find(excluded); at != std::string::npos; at = result.find(excluded, at)) {
            result.replace(at, excluded.size(), "\xEF\xBF\xBD");
        }
    }
    return result;
}

std::string escapedMarkup(std::string_view text) {
    std::string result;
    for (const char character : text) {
        switch (character) {
            case '&': result += "&amp;"; break;
            case '<': result += "&lt;"; break;
            case '>': result += "&gt;"; break;
            case '"': result += "&quot;"; break;
            default: result += character;
        }
    }
    return result;
}

std::size_t columns(std::string_view text) {
    if (isPlain(text)) return text.size();
    std::size_t count = 0;
    while (!text.empty()) {
        const tCharacter character = firstCharacter(text);
        count += columnsOf(character.codePoint);
        text.remove_prefix(character.size);
    }
    return count;
}

std::string shortened(std::string_view text, std::size_t columns) {
    if (text.size() <= columns) return std::string(text);  // no character takes more columns than bytes
    constexpr std::size_t bytesPerColumn = 4;              // the longest character; it may have any number of marks
    std::size_t count = 0;
    std::size_t fitting = 0;  // bytes that leave room for the ellipsis
    for (std::size_t at = 0; at < text.size();) {
        if (count < columns) fitting = at;
        const tCharacter character = firstCharacter(text.substr(at));
        count += columnsOf(character.codePoint);
        at += character.size;
        if (count > columns || at > bytesPerColumn * columns) {
            return std::string(text.substr(0, fitting)).append(ellipsis);
        }
    }
    return std::string(text);
}

}  // namespace nPlainText
