#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Texts of unknown origin, made fit for a terminal or a document: a name in a status file can contain any bytes.
namespace nPlainText {

/// Returns whether the text consists of visible ASCII characters and blanks, as most texts do: then it is fit as it is.
[[nodiscard]] bool isPlain(std::string_view text) noexcept;

/// Returns the text as valid UTF-8: every byte that begins no valid character becomes U+FFFD.
[[nodiscard]] std::string valid(std::string_view text);

/// Returns valid UTF-8 without characters that control a terminal or the direction of writing: each becomes U+FFFD.
[[nodiscard]] std::string printable(std::string_view text);

/// Returns the same without U+FFFE and U+FFFF, which XML excludes even if they are escaped
/// (https://www.w3.org/TR/xml/#charsets).
[[nodiscard]] std::string printableInXml(std::string_view text);

/// Returns a printable text as the content of an element, or as an attribute in double quotes, in HTML and XML.
[[nodiscard]] std::string escapedMarkup(std::string_view text);

/// Returns how many columns of a terminal the text takes. Requires: a printable text.
[[nodiscard]] std::size_t columns(std::string_view text);

/// Returns the text, or as much of its beginning as fits into so many columns together with an ellipsis, and has at
/// most a few bytes for each: marks take no columns. Requires: a printable text.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t columns);

}  // namespace nPlainText
