#include "trace/trace.h"

#include <array>
#include <cstdio>

#include "trace/debugger.h"

namespace nTrace {
namespace {

/// Always empty so far: no code in this program indents its trace. A diagnostic build that does fills its slot here.
constinit tIndentationTable indentation{};

}  // namespace

std::uint32_t gMask = ZUZIPTRA_TRACE_MASK;

void writeLine(const tSite& site, const char* format, std::va_list arguments) noexcept {
    std::array<char, 1024> line{};
    char* const text = writePrefix(line.data(), line.size(), site, indentation, currentThreadId());
    std::vsnprintf(text, line.size() - static_cast<std::size_t>(text - line.data()), format, arguments);
    writeToDebugger(line.data());
}

}  // namespace nTrace
