#pragma once

#include <cstdint>

/// A writer for small JSON texts (RFC 8259) that grow in place, in one buffer, and are never parsed into a tree.
///
/// The buffer contains the text and its terminating zero at the start; every byte after the terminator is zero up to
/// the last one, which contains the sentinel 'J'. The free space is found by scanning from the terminator to the
/// sentinel, so no length is stored. Nothing here allocates, throws, owns memory or knows about status codes.
///
/// A cursor on an opening brace or bracket denotes the start of that container; any other cursor is directly after the
/// value just written. Every writer returns the cursor after the text that it wrote, or null if there was too little
/// space; the text is then unchanged. A writer does nothing with a null cursor and returns null, so that writes can be
/// chained.
namespace zuerr {

inline constexpr char jsonSentinel = 'J';

/// Writes "key":"value"; with a null key only "value" (an array element).
/// Backspace, tab, line feed, form feed, carriage return, quote and backslash are escaped; everything else is copied.
char* AddString(char* cursor, const char* key, const char* value) noexcept;

/// Writes "key": and the number in decimal.
char* AddInt(char* cursor, const char* key, std::int32_t value) noexcept;
char* AddUInt(char* cursor, const char* key, std::uint32_t value) noexcept;

/// Writes "key":{}. To fill the new object, write at the returned cursor minus one: its closing brace.
char* AddObject(char* cursor, const char* key) noexcept;

/// Returns the closing brace or bracket of the top-level container, or null if the text is not a valid container.
/// Lenient: leading zeros, a lone minus sign and missing digits after a point or exponent sign are accepted in numbers,
/// and the text after the container is not read. Nesting deeper than 1024 is rejected.
char* FindEnd(char* text) noexcept;

/// Replaces the text in a buffer of `size` bytes and writes the zero fill and the sentinel after it; a null text keeps
/// the current one. Returns false, and changes nothing, if size is less than the text's length + 2.
bool CopyText(char* buffer, std::uint32_t size, const char* text) noexcept;

/// A series of writes into a buffer that can grow. If there is too little space for a write, `grow` enlarges the buffer
/// and returns the same cursor in the new one; if it fails, this write and every later one are skipped.
class JsonChain {
public:
    /// Returns the cursor in the larger buffer, or null on failure.
    /// Requires: a buffer that is returned is larger than before; otherwise the chain would retry forever.
    using Grow = char* (*)(void* argument, const char* cursor) noexcept;

    JsonChain(char* cursor, Grow grow, void* argument) noexcept : cursor_(cursor), grow_(grow), argument_(argument) {}

    JsonChain& AddString(const char* key, const char* value) noexcept;
    JsonChain& AddInt(const char* key, std::int32_t value) noexcept;
    JsonChain& AddUInt(const char* key, std::uint32_t value) noexcept;
    /// Adds an object; later writes are added to it until LeaveObject.
    JsonChain& EnterObject(const char* key) noexcept;
    JsonChain& LeaveObject() noexcept;

    /// Returns the position after the last value written (in a new object, of its closing brace), or null if a write
    /// was skipped.
    [[nodiscard]] char* cursor() const noexcept { return cursor_; }

private:
    template <class Write>
    JsonChain& add(Write write) noexcept;

    char* cursor_;
    Grow grow_;
    void* argument_;
};

}  // namespace zuerr
