#pragma once

#include <string>
#include <string_view>

/// Between the UTF-16 of the platform's calls and the UTF-8 of the rest of the program.
namespace nStdPath {

/// Appends the UTF-8 form of a text that the system keeps, such as a registry value. Nothing is refused: a high
/// surrogate is paired with whatever follows it, and one that stands alone becomes three bytes of its own.
void wideToUtf8(const char16_t* begin, const char16_t* end, std::string& result);

/// The same for the name of a file, which may be any row of 16-bit units: only true pairs are joined, so that no two
/// names become the same text and every name comes back as it was.
[[nodiscard]] std::string fileNameToUtf8(std::u16string_view name);

/// The way back. A byte that begins no character becomes U+FFFD.
[[nodiscard]] std::u16string fileNameFromUtf8(std::string_view text);

}  // namespace nStdPath
