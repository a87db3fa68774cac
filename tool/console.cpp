#include "tool/console.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace nConsole {
namespace {

/// Returns how many bytes a character that begins with this byte has; 1 for a byte that begins none.
std::size_t lengthFrom(char first) noexcept {
    const auto byte = static_cast<unsigned char>(first);
    if (byte >= 0xF0) return 4;
    if (byte >= 0xE0) return 3;
    return byte >= 0xC0 ? 2 : 1;
}

bool isContinuation(char character) noexcept { return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U; }

}  // namespace

bool showsColours(tStandardStream stream) noexcept {
    const char* const noColour = std::getenv("NO_COLOR");  // NOLINT(concurrency-mt-unsafe): nothing sets it here
    const bool forbidden = noColour != nullptr && *noColour != 0;
    return !forbidden && isTerminal(stream) && enableColours(stream);
}

std::size_t wholeCharacters(std::string_view text) noexcept {
    std::size_t tail = 0;
    while (tail < std::min<std::size_t>(text.size(), 4)) {
        const char character = text[text.size() - ++tail];
        if (!isContinuation(character)) return lengthFrom(character) > tail ? text.size() - tail : text.size();
    }
    return text.size();
}

tBuffer::tBuffer(tWrite write) : write_(std::move(write)) { setp(bytes_.data(), bytes_.data() + bytes_.size()); }

tBuffer::~tBuffer() {
    try {
        tBuffer::sync();
    } catch (...) {
        // Whoever wants to know flushes the stream before.
    }
}

/// Writes the first bytes and moves the others to the front.
bool tBuffer::writeFirst(std::size_t size) {
    const std::string_view text(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    const bool written = size == 0 || write_(text.substr(0, size));
    std::copy(text.begin() + static_cast<std::ptrdiff_t>(size), text.end(), bytes_.begin());
    setp(bytes_.data(), bytes_.data() + bytes_.size());
    pbump(static_cast<int>(text.size() - size));
    return written;
}

tBuffer::int_type tBuffer::overflow(int_type character) {
    const std::string_view text(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    if (!writeFirst(wholeCharacters(text))) return traits_type::eof();
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
    return sputc(traits_type::to_char_type(character));
}

int tBuffer::sync() { return writeFirst(static_cast<std::size_t>(pptr() - pbase())) ? 0 : -1; }

}  // namespace nConsole
