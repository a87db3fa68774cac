#pragma once

#include <string>

namespace nSystemReason {

/// Returns the system's text for the last error of a system call on this thread, without its line break and final stop.
[[nodiscard]] std::string last();

}  // namespace nSystemReason
