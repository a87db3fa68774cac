#pragma once

namespace nUpperCase {

/// Returns the upper-case form of a UTF-16 unit as the platform's tables have it; any other unit unchanged.
[[nodiscard]] char16_t toUpper(char16_t unit) noexcept;

}  // namespace nUpperCase
