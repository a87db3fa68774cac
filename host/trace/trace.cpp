#include "trace/trace.h"

#include <array>
#include <cstdio>

#include "trace/debugger.h"

namespace nTrace {
namespace {

/// No thread of this program enters a level so far; a diagnostic build that wants indentation fills its slot here.
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
