#pragma once

#include <cstdint>

/// The two things that tracing asks of the platform.
namespace nTrace {

[[nodiscard]] std::uint32_t currentThreadId() noexcept;

/// Hands a zero-terminated line to the debugger.
void writeToDebugger(const char* line) noexcept;

}  // namespace nTrace
