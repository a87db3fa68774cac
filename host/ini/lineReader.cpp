#include "ini/lineReader.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace nIni {
namespace {

constexpr bool isTerminator(char c) noexcept { return c == '\n' || c == '\r' || c == 0; }

constexpr std::size_t wordSize = sizeof(std::uint64_t);

/// Returns whether one of the first eight characters is less than 16, as every terminator is.
bool hasControlCharacter(const char* characters) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, characters, wordSize);
    // The subtraction borrows from the top bit of a byte that is too small, or of one after such a byte.
    return ((word - 0x1010101010101010U) & ~word & 0x8080808080808080U) != 0;
}

/// Returns the first terminator, or the end.
const char* findTerminator(const char* from, const char* end) noexcept {
    for (; end - from >= std::ptrdiff_t{wordSize}; from += wordSize) {
        if (!hasControlCharacter(from)) continue;
        const char* const found = std::find_if(from, from + wordSize, [](char c) { return isTerminator(c); });
        if (found != from + wordSize) return found;
    }
    return std::find_if(from, end, [](char c) { return isTerminator(c); });
}

}  // namespace

std::optional<std::string_view> tLineReader::next() noexcept {
    // Nothing is skipped for good before the whole line is known.
    std::string_view rest = rest_;
    if (!rest.empty() && isTerminator(rest.front()) && rest.front() != lastTerminator_) rest.remove_prefix(1);
    const char* const restEnd = rest.data() + rest.size();
    const char* const end = findTerminator(rest.data(), restEnd);
    const std::string_view line(rest.data(), static_cast<std::size_t>(end - rest.data()));
    if (end != restEnd) {
        lastTerminator_ = *end;
        rest_ = rest.substr(line.size() + 1);
    } else if (isLast_ && !line.empty()) {
        rest_ = {};
    } else {
        return std::nullopt;
    }
    if (lineNumber_ < std::numeric_limits<std::int32_t>::max()) ++lineNumber_;
    return line;
}

}  // namespace nIni
