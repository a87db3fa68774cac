#pragma once

#include <cstdint>

/// A writer for small JSON texts (RFC 8259) that grow in place, in one buffer, without ever being parsed into a tree.
///
/// The buffer holds the text and its terminating zero at the start; every byte behind the terminator is zero up to the
/// last one, which holds the sentinel 'J'. The free room is found by walking from the terminator to the sentinel, so no
/// length is stored anywhere. Nothing here allocates, throws, or knows of status codes; nothing is owned.
///
/// A cursor on an opening brace or bracket stands for the start of that container; any other cursor stands directly
/// behind the value just written. Every writer returns the cursor behind what it wrote, or null when there was no room;
/// the text is then unchanged. A null cursor is passed through, so that writes can be chained.
namespace zuerr {

inline constexpr char jsonSentinel = 'J';

/// The letter behind the backslash for a character that is written escaped, 0 for any other.
constexpr char jsonEscapeLetter(char character) noexcept {
    switch (character) {
        case '\b': return 'b';
        case '\t': return 't';
        case '\n': return 'n';
        case '\f': return 'f';
        case '\r': return 'r';
        case '"': return '"';
        case '\\': return '\\';
        default: return 0;
    }
}

/// Writes "key":"value"; with a null key only "value" (an array element).
/// Backspace, tab, line feed, form feed, carriage return, quote and backslash are escaped, all else is copied.
char* AddString(char* cursor, const char* key, const char* value) noexcept;

/// Writes "key": and the number in decimal.
char* AddInt(char* cursor, const char* key, std::int32_t value) noexcept;
char* AddUInt(char* cursor, const char* key, std::uint32_t value) noexcept;

/// Writes "key":{}. To fill the new object, write at the returned cursor less one: its closing brace.
char* AddObject(char* cursor, const char* key) noexcept;

/// The closing brace or bracket of the top-level container, or null when the text is no valid container. Lenient:
/// leading zeros, a lone minus sign and a run of no digits behind point or exponent sign pass as numbers, and what
/// follows the container is not looked at. Nesting deeper than 1024 is refused.
char* FindEnd(char* text) noexcept;

/// Replaces the text in a buffer of `size` bytes and stamps zero fill and sentinel behind it; with a null text it only
/// stamps behind the text that is there. False, and nothing changed, when size is below the text's length + 2.
bool CopyText(char* buffer, std::uint32_t size, const char* text) noexcept;

/// A series of writes into a buffer that can grow. When a write finds no room, `grow` is asked for more and returns the
/// same cursor in the new buffer; when it cannot, this write and every later one are left out.
class JsonChain {
public:
    /// Given the argument and the cursor; returns the cursor in the grown buffer, or null.
    using Grow = char* (*)(void* argument, const char* cursor);

    JsonChain(char* cursor, Grow grow, void* argument) noexcept : cursor_(cursor), grow_(grow), argument_(argument) {}

    JsonChain& AddString(const char* key, const char* value) noexcept;
    JsonChain& AddInt(const char* key, std::int32_t value) noexcept;
    JsonChain& AddUInt(const char* key, std::uint32_t value) noexcept;
    /// Goes on inside the new object: what is added next is its member.
    JsonChain& EnterObject(const char* key) noexcept;

    /// Behind the last value written (in a new object: on its closing brace); null once a write was left out.
    [[nodiscard]] char* cursor() const noexcept { return cursor_; }

private:
    template <class Write>
    JsonChain& add(Write write) noexcept;

    char* cursor_;
    Grow grow_;
    void* argument_;
};

}  // namespace zuerr
