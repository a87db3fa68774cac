#include "tool/check/wording.h"

#include <cstddef>
#include <numeric>

namespace nWording {
namespace {

constexpr std::size_t longest = 200;

constexpr bool continues(char c) noexcept { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80; }

/// Returns the length of the character at the beginning of the text, or 0 if there is no valid one.
/// Requires: the text is not empty.
std::size_t characterLength(std::string_view text) noexcept {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) return 1;
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (length == 0 || text.size() < length) return 0;
    for (const char c : text.substr(1, length - 1)) {
        if (!continues(c)) return 0;
    }
    const auto second = static_cast<unsigned char>(text[1]);
    const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    const bool surrogateOrTooLarge = (first == 0xED && second >= 0xA0) || (first == 0xF4 && second >= 0x90);
    return overlong || surrogateOrTooLarge ? 0 : length;
}

}  // namespace

std::string quoted(std::string_view text) {
    if (text.size() <= longest) return '"' + std::string(text) + '"';
    std::size_t end = longest;
    while (end > longest - 4 && continues(text[end])) --end;
    return '"' + std::string(text.substr(0, end)) + "...\"";
}

bool isUtf8(std::string_view text) noexcept {
    // Almost every text is ASCII, which a compiler examines many bytes at a time if the loop ends nowhere else.
    const auto join = [](unsigned all, char c) { return all | static_cast<unsigned char>(c); };
    if (std::accumulate(text.begin(), text.end(), 0U, join) < 0x80) return true;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

}  // namespace nWording
