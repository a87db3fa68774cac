#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The prefix of a trace line: "[component|                     file.cpp|0007] " and one space per level of depth.
namespace nTrace {

/// The source location of a trace call. The texts are borrowed.
struct tSite {
    const char* file;
    const char* component;
    std::uint32_t line;
};

/// One thread's indentation. While inUse is 0, the other fields are meaningless.
struct tIndentation {
    std::uint32_t threadId;
    std::uint32_t depth;
    std::uint32_t inUse;
};

/// Read without a lock: each thread reads only its own slot.
using tIndentationTable = std::array<tIndentation, 16>;

/// The parts of the prefix. Each function writes at most `size` bytes at `out`, always zero-terminates them, and
/// truncates text that does not fit.
/// Requires: size is at least 1. Returns the address of the terminating zero.
char* writeText(char* out, std::size_t size, const char* text) noexcept;
/// Right-aligns the text with spaces; a longer text keeps its last `width` characters.
char* writeAligned(char* out, std::size_t size, const char* text, std::size_t width) noexcept;
/// Writes four digits with leading zeros; a longer number keeps its last four.
char* writeLineNumber(char* out, std::size_t size, std::uint32_t line) noexcept;
/// Writes one space per level of the thread's depth; none for a thread without a slot.
char* writeIndentation(char* out, std::size_t size, const tIndentationTable& table, std::uint32_t threadId) noexcept;

/// Writes the whole prefix.
char* writePrefix(char* out, std::size_t size, const tSite& site, const tIndentationTable& table,
                  std::uint32_t threadId) noexcept;

}  // namespace nTrace
