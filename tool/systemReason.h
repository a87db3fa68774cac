#pragma once

#include <cstdint>
#include <string>

namespace nSystemReason {

/// Returns the system's text for one of its errors, without a line break or final stop, or one with the error's number
/// if it has none.
[[nodiscard]] std::string of(std::uint32_t error);

/// Returns the text for the last error of a system call on this thread.
[[nodiscard]] std::string last();

}  // namespace nSystemReason
