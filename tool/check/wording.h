#pragma once

#include <string>
#include <string_view>

/// Texts in messages.
namespace nWording {

/// Returns the text in double quotes; of a long one, only the beginning.
[[nodiscard]] std::string quoted(std::string_view text);

/// Returns whether the text is valid UTF-8, without surrogates and overlong forms.
[[nodiscard]] bool isUtf8(std::string_view text) noexcept;

}  // namespace nWording
