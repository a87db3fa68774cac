#pragma once

#include <cstdint>

/// The platform calls that tracing needs.
namespace nTrace {

[[nodiscard]] std::uint32_t currentThreadId() noexcept;

/// Sends a zero-terminated line to the debugger.
void writeToDebugger(const char* line) noexcept;

}  // namespace nTrace
