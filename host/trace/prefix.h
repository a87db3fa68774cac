#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The prefix of a trace line: "[component|                     file.cpp|0007] " and one space per level of depth.
namespace nTrace {

/// Where a trace call is. The texts are borrowed.
struct tSite {
    const char* file;
    const char* component;
    std::uint32_t line;
};

/// One thread's indentation. The other fields of a slot that is not in use mean nothing.
struct tIndentation {
    std::uint32_t threadId;
    std::uint32_t depth;
    std::uint32_t inUse;
};

/// Read without a lock: each thread reads only its own slot.
using tIndentationTable = std::array<tIndentation, 16>;

/// The pieces of the prefix. Each writes at `out`, which has room for `size` bytes (at least one), always leaves a
/// terminating zero, and returns the new end: the address of that zero. What does not fit is cut off.
char* writeText(char* out, std::size_t size, const char* text) noexcept;
/// Right-aligned with spaces; a longer text keeps its last `width` characters.
char* writeAligned(char* out, std::size_t size, const char* text, std::size_t width) noexcept;
/// Four digits with leading zeros; a longer number keeps its last four.
char* writeLineNumber(char* out, std::size_t size, std::uint32_t line) noexcept;
/// One space per level of the thread's depth; none for a thread without a slot.
char* writeIndentation(char* out, std::size_t size, const tIndentationTable& table, std::uint32_t threadId) noexcept;

/// Writes all pieces in their order.
char* writePrefix(char* out, std::size_t size, const tSite& site, const tIndentationTable& table,
                  std::uint32_t threadId) noexcept;

}  // namespace nTrace
