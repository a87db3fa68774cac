#include "source/statusText.h"

#include <array>
#include <charconv>

namespace {

std::string hexadecimal(std::uint32_t value) {
    std::array<char, 2 * sizeof value> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr};
}

}  // namespace

std::string statusText(const tStatusContent& content) {
    std::string text = "ZU-Ziptra Remote Configuration and Deployment status\n";
    text.append("Updated: ").append(content.updated);
    text.append("Allowed: 0x").append(hexadecimal(content.allowedMask)).append("\n");
    // 32 bits, as in the plug-ins' lines: the number wraps around after 49.7 days.
    const std::string initTime = std::to_string(static_cast<std::uint32_t>(content.initTimeMs));
    if (content.initTimeMs != 0) text.append("Init Time ").append(initTime).append(" ms\n");
    return text.append("\n").append(content.messages).append(statusText(content.entries));
}
