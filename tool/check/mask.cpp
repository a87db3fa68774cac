#include "tool/check/mask.h"

#include <array>
#include <charconv>
#include <system_error>

namespace nMask {

std::optional<std::uint32_t> read(std::string_view text) noexcept {
    constexpr int decimal = 10;
    constexpr int hexadecimal = 16;
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal) text.remove_prefix(2);
    std::uint32_t mask = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, mask, isHexadecimal ? hexadecimal : decimal);
    return error == std::errc() && rest == end ? std::optional(mask) : std::nullopt;
}

std::string write(std::uint32_t mask) {
    std::array<char, 2 * sizeof mask> digits{};
    return "0x" + std::string(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), mask, 16).ptr);
}

}  // namespace nMask
