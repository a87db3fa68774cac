#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Masks of features, as people write them.
namespace nMask {

/// Reads a number of at most 32 bits, decimal, or hexadecimal after "0x". Returns nullopt for any other text.
[[nodiscard]] std::optional<std::uint32_t> read(std::string_view text) noexcept;

/// Returns the number as the status file shows it: "0xfffffffd".
[[nodiscard]] std::string write(std::uint32_t mask);

}  // namespace nMask
