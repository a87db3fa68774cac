#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace nIni {

/// Cuts a text, which it receives block by block, into lines. A line ends with LF, CR or a zero byte; the last line may
/// end with the text.
///
/// CR LF and LF CR end one line: if a line begins with a terminator other than the one that ended the previous line,
/// that one character is skipped. Before the first line, a zero byte counts as the previous terminator.
class tLineReader {
public:
    /// The first line has the number after `linesBefore`.
    explicit tLineReader(std::int32_t linesBefore = 0) noexcept : lineNumber_(linesBefore) {}

    /// Requires: the block begins with the rest of the previous one. Borrows the block.
    void setBlock(std::string_view block, bool isLast) noexcept {
        rest_ = block;
        isLast_ = isLast;
    }

    /// Returns the part of the block after the lines that next() has returned.
    [[nodiscard]] std::string_view rest() const noexcept { return rest_; }

    /// Returns the next line, a part of the block, without its terminator; nullopt if the rest contains no whole line.
    std::optional<std::string_view> next() noexcept;

    /// Returns the number of the line that next() returned last, counted from 1. It stops at the largest value.
    [[nodiscard]] std::int32_t lineNumber() const noexcept { return lineNumber_; }

private:
    std::string_view rest_;
    std::int32_t lineNumber_;
    char lastTerminator_ = 0;
    bool isLast_ = false;
};

}  // namespace nIni
