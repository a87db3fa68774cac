#include "trace/trace.h"

#include <array>
#include <cstdarg>
#include <cstdio>

#include "trace/debugger.h"
#include "trace/prefix.h"

namespace nTrace {
namespace {

/// No thread of this program enters a level so far; a diagnostic build that wants indentation fills its slot here.
constinit IndentationTable indentation{};

}  // namespace

void writeLine(const Site& site, const char* format, ...) noexcept {
    std::array<char, 1024> line{};
    char* const text = writePrefix(line.data(), line.size(), site, indentation, currentThreadId());
    std::va_list arguments;
    va_start(arguments, format);
    // The analyzer of clang 14 does not see that va_start has initialised them.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    std::vsnprintf(text, line.size() - static_cast<std::size_t>(text - line.data()), format, arguments);
    va_end(arguments);
    writeToDebugger(line.data());
}

}  // namespace nTrace
