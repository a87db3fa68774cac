#include <windows.h>

#include "trace/debugger.h"

namespace nTrace {

std::uint32_t currentThreadId() noexcept { return GetCurrentThreadId(); }

void writeToDebugger(const char* line) noexcept { OutputDebugStringA(line); }

}  // namespace nTrace
