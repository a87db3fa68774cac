#include "ini/lineReader.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace nIni {
namespace {

constexpr bool isTerminator(char c) noexcept { return c == '\n' || c == '\r' || c == 0; }

constexpr std::size_t wordSize = sizeof(std::uint64_t);

/// Returns the position of the first of eight characters that is less than 16, as every terminator is; 8 if none is.
std::size_t findControlCharacter(const char* characters) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, characters, wordSize);
    // The subtraction borrows from the top bit of a byte that is too small. Only bytes after one can be marked wrongly.
    const std::uint64_t topBits = (word - 0x1010101010101010U) & ~word & 0x8080808080808080U;
    return static_cast<std::size_t>(std::countr_zero(topBits)) / 8;
}

/// Returns the first terminator, or the end.
const char* findTerminator(const char* from, const char* end) noexcept {
    while (end - from >= std::ptrdiff_t{wordSize}) {
        const std::size_t position = findControlCharacter(from);
        from += position;
        if (position == wordSize) continue;
        if (isTerminator(*from)) return from;
        ++from;
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
