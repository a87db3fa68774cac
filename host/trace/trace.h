#pragma once

#include <cstdarg>
#include <cstdint>

#include "trace/prefix.h"

/// Developer diagnostics. Outside a diagnostic build (the CMake option ZUZIPTRA_TRACE) the entry point compiles to
/// nothing; in a diagnostic build it writes a line to the debugger: a prefix that identifies the call site, followed by
/// the text.
namespace nTrace {

/// Each category is one bit of the mask.
inline constexpr std::uint32_t libraries = 0x1000;
inline constexpr std::uint32_t descriptions = 0x2000;
inline constexpr std::uint32_t errors = 0x4000;

inline constexpr bool enabled = ZUZIPTRA_TRACE != 0;

/// The categories that a diagnostic build writes: ZUZIPTRA_TRACE_MASK until a debugger or a test changes it.
extern std::uint32_t gMask;

/// The category of a trace call together with its site, which the compiler fills in.
struct tCategory {
    // Implicit, so that callers can pass a bare category.
    // NOLINTNEXTLINE(google-explicit-constructor,hicpp-explicit-conversions)
    constexpr tCategory(std::uint32_t category, const char* file = __builtin_FILE(),
                        std::uint32_t line = __builtin_LINE())
        : bits(category), site{file, "zuZiptraRemoteService", line} {}

    std::uint32_t bits;
    tSite site;
};

/// Formats and writes one line, truncated to 1023 bytes, regardless of the mask. Never throws. Thread: any.
[[gnu::format(printf, 2, 0)]] void writeLine(const tSite& site, const char* format, std::va_list arguments) noexcept;

/// The trace entry point: takes a printf format and arguments, which the compiler checks in every build. Thread: any.
[[gnu::format(printf, 2, 3)]] inline void trace([[maybe_unused]] tCategory category,
                                                [[maybe_unused]] const char* format, ...) noexcept {
    if constexpr (enabled) {
        if ((category.bits & gMask) == 0) return;
        std::va_list arguments;
        va_start(arguments, format);
        // The analyzer of clang 14 does not recognise that va_start initialises them.
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
        writeLine(category.site, format, arguments);
        va_end(arguments);
    }
}

}  // namespace nTrace
