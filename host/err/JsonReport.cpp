#include "err/JsonReport.h"

#include <array>
#include <bitset>
#include <charconv>
#include <cstring>
#include <string_view>

namespace zuerr {
namespace {

/// Maps each byte to the letter that follows the backslash in its escape, or to 0 if it is copied.
constexpr auto escapeLetters = [] {
    std::array<char, 256> letters{};
    letters['\b'] = 'b';
    letters['\t'] = 't';
    letters['\n'] = 'n';
    letters['\f'] = 'f';
    letters['\r'] = 'r';
    letters['"'] = '"';
    letters['\\'] = '\\';
    return letters;
}();

char escapeLetter(char character) noexcept { return escapeLetters[static_cast<unsigned char>(character)]; }

std::size_t escapedLength(const char* text) noexcept {
    std::size_t length = 0;
    for (; *text != 0; ++text) length += escapeLetter(*text) == 0 ? 1 : 2;
    return length;
}

char* writeEscaped(char* out, const char* text) noexcept {
    for (; *text != 0; ++text) {
        const char letter = escapeLetter(*text);
        if (letter != 0) *out++ = '\\';
        *out++ = letter == 0 ? *text : letter;
    }
    return out;
}

char* writeQuoted(char* out, const char* text) noexcept {
    *out++ = '"';
    out = writeEscaped(out, text);
    *out++ = '"';
    return out;
}

bool isBlank(char character) noexcept {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

bool isOpener(char character) noexcept { return character == '{' || character == '['; }

char closerOf(char opener) noexcept { return opener == '{' ? '}' : ']'; }

bool opensEmptyContainer(const char* cursor) noexcept {
    if (!isOpener(*cursor)) return false;
    const char* next = cursor + 1;
    while (isBlank(*next)) ++next;
    return *next == closerOf(*cursor);
}

bool closesEmptyContainer(const char* cursor) noexcept {
    if (*cursor != '}' && *cursor != ']') return false;
    const char* previous = cursor - 1;
    while (isBlank(*previous)) --previous;
    return isOpener(*previous) && closerOf(*previous) == *cursor;
}

/// Opens a gap for `bytes` characters and a comma if they need one. Returns where to write them, or null if the buffer
/// is too small.
char* openGap(char* cursor, std::size_t bytes) noexcept {
    const bool atStart = isOpener(*cursor);
    char* const insertion = atStart ? cursor + 1 : cursor;
    const bool alone = *insertion == 0 || opensEmptyContainer(cursor) || closesEmptyContainer(cursor);
    const std::size_t needed = bytes + (alone ? 0 : 1);

    const std::size_t rest = std::strlen(insertion);
    // The free space ends at the sentinel.
    if (std::memchr(insertion + rest + 1, jsonSentinel, needed) != nullptr) return nullptr;

    std::memmove(insertion + needed, insertion, rest + 1);
    if (alone) return insertion;
    if (atStart) {
        insertion[bytes] = ',';
        return insertion;
    }
    *insertion = ',';
    return insertion + 1;
}

/// Writes the key, if any, and then calls `write`, which fills exactly `valueLength` bytes with the value.
template <class Write>
char* addMember(char* cursor, const char* key, std::size_t valueLength, Write write) noexcept {
    if (cursor == nullptr) return nullptr;
    const std::size_t keyLength = key == nullptr ? 0 : escapedLength(key) + std::strlen("\"\":");
    char* out = openGap(cursor, keyLength + valueLength);
    if (out == nullptr) return nullptr;
    if (key != nullptr) {
        out = writeQuoted(out, key);
        *out++ = ':';
    }
    return write(out);
}

/// Adds a text that needs no escaping and no quotes.
char* addLiteral(char* cursor, const char* key, std::string_view literal) noexcept {
    return addMember(cursor, key, literal.size(),
                     [=](char* out) noexcept { return out + literal.copy(out, literal.size()); });
}

template <class Number>
char* addNumber(char* cursor, const char* key, Number value) noexcept {
    std::array<char, 16> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return addLiteral(cursor, key, {digits.data(), end});
}

/// Reads a JSON text. Each step returns false, or stops, at the first byte that is not valid.
class Scanner {
public:
    explicit Scanner(char* text) noexcept : at_(text) {}

    /// Returns the closing character of the container that the text begins with, or null.
    char* containerEnd() noexcept {
        if (!isOpener(*at_)) return nullptr;
        open();
        for (;;) {
            // A container has just been opened, or a value in one has just ended.
            skipBlanks();
            const bool first = justOpened_;
            justOpened_ = false;
            if (*at_ == closer()) {
                if (--depth_ == 0) return at_;
                ++at_;
                continue;
            }
            if (!first) {
                if (*at_ != ',') return nullptr;
                ++at_;
                skipBlanks();
            }
            if (inObject_[depth_ - 1] && !key()) return nullptr;
            if (!value()) return nullptr;
        }
    }

private:
    /// Deeper nesting is rejected: a report has two levels, and the scanner must not allocate memory.
    static constexpr std::size_t maximumDepth = 1024;

    void skipBlanks() noexcept {
        while (isBlank(*at_)) ++at_;
    }

    [[nodiscard]] char closer() const noexcept { return inObject_[depth_ - 1] ? '}' : ']'; }

    bool open() noexcept {
        if (depth_ == maximumDepth) return false;
        inObject_[depth_++] = *at_++ == '{';
        justOpened_ = true;
        return true;
    }

    bool key() noexcept {
        if (!string()) return false;
        skipBlanks();
        if (*at_ != ':') return false;
        ++at_;
        skipBlanks();
        return true;
    }

    bool value() noexcept {
        switch (*at_) {
            case '{':
            case '[': return open();
            case '"': return string();
            case 't': return word("true");
            case 'f': return word("false");
            case 'n': return word("null");
            default: return number();
        }
    }

    bool word(const char* expected) noexcept {
        const std::size_t length = std::strlen(expected);
        if (std::strncmp(at_, expected, length) != 0) return false;
        at_ += length;
        return true;
    }

    bool string() noexcept {
        if (*at_++ != '"') return false;
        for (;; ++at_) {
            const auto byte = static_cast<unsigned char>(*at_);
            if (byte < 0x20) return false;
            if (byte == '"') {
                ++at_;
                return true;
            }
            if (byte == '\\' && !escape()) return false;
        }
    }

    /// Leaves the scanner on the last byte of the escape.
    bool escape() noexcept {
        ++at_;
        if (*at_ != 'u') return *at_ != 0 && std::strchr("\"/\\bfnrt", *at_) != nullptr;
        for (int i = 0; i < 4; ++i) {
            ++at_;
            if (*at_ == 0 || std::strchr("0123456789abcdefABCDEF", *at_) == nullptr) return false;
        }
        return true;
    }

    [[nodiscard]] bool onDigit() const noexcept { return *at_ >= '0' && *at_ <= '9'; }

    void skipDigits() noexcept {
        while (onDigit()) ++at_;
    }

    bool number() noexcept {
        if (*at_ == '-') {
            ++at_;
        } else if (!onDigit()) {
            return false;
        }
        skipDigits();
        if (*at_ == '.') {
            ++at_;
            skipDigits();
        }
        if (*at_ == 'e' || *at_ == 'E') {
            ++at_;
            if (*at_ != '+' && *at_ != '-' && !onDigit()) return false;
            ++at_;
            skipDigits();
        }
        return true;
    }

    char* at_;
    std::bitset<maximumDepth> inObject_;
    std::size_t depth_ = 0;
    bool justOpened_ = false;
};

}  // namespace

char* AddString(char* cursor, const char* key, const char* value) noexcept {
    return addMember(cursor, key, escapedLength(value) + std::strlen("\"\""),
                     [=](char* out) noexcept { return writeQuoted(out, value); });
}

char* AddInt(char* cursor, const char* key, std::int32_t value) noexcept { return addNumber(cursor, key, value); }

char* AddUInt(char* cursor, const char* key, std::uint32_t value) noexcept { return addNumber(cursor, key, value); }

char* AddObject(char* cursor, const char* key) noexcept { return addLiteral(cursor, key, "{}"); }

char* FindEnd(char* text) noexcept { return Scanner(text).containerEnd(); }

bool CopyText(char* buffer, std::uint32_t size, const char* text) noexcept {
    const std::size_t length = std::strlen(text == nullptr ? buffer : text);
    if (size < length + 2) return false;
    if (text != nullptr) std::memmove(buffer, text, length);
    std::memset(buffer + length, 0, size - 1 - length);
    buffer[size - 1] = jsonSentinel;
    return true;
}

template <class Write>
JsonChain& JsonChain::add(Write write) noexcept {
    while (cursor_ != nullptr) {
        char* const next = write(cursor_);
        if (next != nullptr) {
            cursor_ = next;
            break;
        }
        cursor_ = grow_ == nullptr ? nullptr : grow_(argument_, cursor_);
    }
    return *this;
}

JsonChain& JsonChain::AddString(const char* key, const char* value) noexcept {
    return add([=](char* cursor) noexcept { return zuerr::AddString(cursor, key, value); });
}

JsonChain& JsonChain::AddInt(const char* key, std::int32_t value) noexcept {
    return add([=](char* cursor) noexcept { return zuerr::AddInt(cursor, key, value); });
}

JsonChain& JsonChain::AddUInt(const char* key, std::uint32_t value) noexcept {
    return add([=](char* cursor) noexcept { return zuerr::AddUInt(cursor, key, value); });
}

JsonChain& JsonChain::EnterObject(const char* key) noexcept {
    add([=](char* cursor) noexcept { return zuerr::AddObject(cursor, key); });
    if (cursor_ != nullptr) --cursor_;
    return *this;
}

JsonChain& JsonChain::LeaveObject() noexcept {
    if (cursor_ != nullptr) ++cursor_;
    return *this;
}

}  // namespace zuerr
