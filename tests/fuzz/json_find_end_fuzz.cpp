// Compares FindEnd with a second, recursive reader that follows the same lenient rules.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "check.h"
#include "err/JsonReport.h"

namespace {

/// FindEnd rejects deeper nesting.
constexpr int maximumDepth = 1024;

/// Each reader receives the text from its token on and returns the text after the token, or nullopt if it is malformed.
using Rest = std::optional<std::string_view>;

Rest value(std::string_view text, int depth);

std::string_view withoutBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
}

std::string_view withoutDigits(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of("0123456789"), text.size()));
}

bool startsWithAny(std::string_view text, std::string_view characters) {
    return !text.empty() && characters.find(text.front()) != std::string_view::npos;
}

Rest word(std::string_view text, std::string_view expected) {
    return text.starts_with(expected) ? Rest(text.substr(expected.size())) : std::nullopt;
}

Rest string(std::string_view text) {
    if (!text.starts_with('"')) return std::nullopt;
    text.remove_prefix(1);
    while (!text.empty()) {
        const auto byte = static_cast<unsigned char>(text.front());
        text.remove_prefix(1);
        if (byte < ' ') return std::nullopt;
        if (byte == '"') return text;
        if (byte != '\\') continue;
        if (!startsWithAny(text, "\"/\\bfnrtu")) return std::nullopt;
        const std::size_t digits = text.front() == 'u' ? 4 : 0;
        text.remove_prefix(1);
        if (text.size() < digits) return std::nullopt;
        if (text.substr(0, digits).find_first_not_of("0123456789abcdefABCDEF") != std::string_view::npos) {
            return std::nullopt;
        }
        text.remove_prefix(digits);
    }
    return std::nullopt;
}

Rest number(std::string_view text) {
    if (!startsWithAny(text, "-0123456789")) return std::nullopt;
    text = withoutDigits(text.substr(text.front() == '-' ? 1 : 0));
    if (text.starts_with('.')) text = withoutDigits(text.substr(1));
    if (!startsWithAny(text, "eE")) return text;
    text.remove_prefix(1);
    if (!startsWithAny(text, "+-0123456789")) return std::nullopt;
    return withoutDigits(text.substr(1));
}

Rest pair(std::string_view text, int depth) {
    const Rest afterKey = string(text);
    if (!afterKey) return std::nullopt;
    const Rest afterColon = word(withoutBlanks(*afterKey), ":");
    return afterColon ? value(withoutBlanks(*afterColon), depth) : std::nullopt;
}

Rest container(std::string_view text, int depth) {
    if (depth > maximumDepth) return std::nullopt;
    const bool object = text.front() == '{';
    const char closer = object ? '}' : ']';
    text = withoutBlanks(text.substr(1));
    if (text.starts_with(closer)) return text.substr(1);
    for (;;) {
        const Rest rest = object ? pair(text, depth) : value(text, depth);
        if (!rest) return std::nullopt;
        text = withoutBlanks(*rest);
        if (text.starts_with(closer)) return text.substr(1);
        if (!text.starts_with(',')) return std::nullopt;
        text = withoutBlanks(text.substr(1));
    }
}

Rest value(std::string_view text, int depth) {
    if (text.starts_with('"')) return string(text);
    if (startsWithAny(text, "{[")) return container(text, depth + 1);
    if (startsWithAny(text, "tfn")) {
        return word(text, text.front() == 't' ? "true" : text.front() == 'f' ? "false" : "null");
    }
    return number(text);
}

/// Returns where the top-level container ends, or -1.
std::ptrdiff_t expectedEnd(std::string_view text) {
    if (!startsWithAny(text, "{[")) return -1;
    const Rest rest = container(text, 1);
    return rest ? static_cast<std::ptrdiff_t>(text.size() - rest->size()) - 1 : -1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A zero ends the text, for both sides.
    std::string text(reinterpret_cast<const char*>(data), size);
    text.resize(std::string_view(text.c_str()).size());
    const std::string before = text;

    char* const end = zuerr::FindEnd(text.data());

    const std::ptrdiff_t expected = expectedEnd(before);
    check(end == (expected < 0 ? nullptr : text.data() + expected), "end");
    check(text == before, "the text, which is only read");
    return 0;
}
