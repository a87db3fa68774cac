#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// What one line of an INI file says, and which part of a file is its text. Pure.
namespace nIni {

enum class tLineKind : std::uint8_t {
    comment,
    header,  ///< of a section
    key,
    // Malformed:
    blank,
    headerNotClosed,    ///< no "]"
    headerWithoutName,  ///< nothing but white space in the brackets
    noSeparator,        ///< neither a header nor a comment, and no "="
    keyWithoutName,
    keyWithoutValue,  ///< without the flag acceptEmptyValues
};

/// The texts are parts of the line, and empty if the line is malformed.
struct tLine {
    tLineKind kind = tLineKind::blank;
    char quote = 0;          ///< the quote character that was stripped from the value, or 0
    std::string_view name;   ///< of the section or the key
    std::string_view value;  ///< of the key
};

[[nodiscard]] constexpr bool isMalformed(tLineKind kind) noexcept { return kind >= tLineKind::blank; }

/// Returns what the line, without its terminator, says to a document with these flags.
[[nodiscard]] tLine readLine(std::string_view line, std::uint32_t flags) noexcept;

/// A name like "Text Line12".
struct tContinuation {
    std::string_view stem;   ///< "Text"
    bool startsRun = false;  ///< the number is 1
};

/// Returns nullopt if the key's name is no such name.
[[nodiscard]] std::optional<tContinuation> toContinuation(std::string_view name) noexcept;

/// Returns whether the text begins with a byte-order mark of UTF-16 or UTF-32; FF FE 00 00 begins with one of UTF-16.
/// Requires: at most the first four bytes of the file.
[[nodiscard]] bool isWide(std::string_view start) noexcept;

/// Returns the text without the byte-order mark of UTF-8, if it begins with one.
[[nodiscard]] std::string_view withoutByteOrderMark(std::string_view text) noexcept;

}  // namespace nIni
