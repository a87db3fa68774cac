#pragma once

#include <cstdint>
#include <string>

namespace nSystemReason {

/// Returns the system's text for a Windows error, without its line break and final stop, or "error 5" if it has none.
[[nodiscard]] std::string of(std::uint32_t error);

/// Returns the text for the last error of a system call on this thread.
[[nodiscard]] std::string last();

}  // namespace nSystemReason
