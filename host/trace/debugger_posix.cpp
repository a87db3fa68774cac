// Never shipped: lets the portable core run under native tools. Standard error replaces the debugger.
#include <unistd.h>

#include <cstdio>

#include "trace/debugger.h"

namespace nTrace {

std::uint32_t currentThreadId() noexcept { return static_cast<std::uint32_t>(gettid()); }

void writeToDebugger(const char* line) noexcept { std::fputs(line, stderr); }

}  // namespace nTrace
