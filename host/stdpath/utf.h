#pragma once

#include <string>
#include <string_view>

/// Conversions between the UTF-16 of the platform's calls and the UTF-8 of the rest of the program.
namespace nStdPath {

/// Appends the UTF-8 form of a text from the system, such as a registry value. Any input is accepted: a high surrogate
/// is paired with any unit that follows it, and a lone surrogate becomes three bytes.
void wideToUtf8(const char16_t* begin, const char16_t* end, std::string& result);

/// Returns the UTF-8 form of a file name, which may be any sequence of 16-bit units. Only valid surrogate pairs are
/// joined, so different names stay different, and fileNameFromUtf8 restores each of them.
[[nodiscard]] std::string fileNameToUtf8(std::u16string_view name);

/// Returns the UTF-16 form. A byte that does not begin a valid character becomes U+FFFD.
[[nodiscard]] std::u16string fileNameFromUtf8(std::string_view text);

}  // namespace nStdPath
