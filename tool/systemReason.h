#pragma once

#include <cstdint>
#include <string>

namespace nSystemReason {

/// Returns the system's text for one of its errors, without a line break or final stop. If it has none, the text
/// contains the error's number.
[[nodiscard]] std::string of(std::uint32_t error);

/// Returns the text for the last error of a system call on this thread.
[[nodiscard]] std::string last();

}  // namespace nSystemReason
