#pragma once

#include <cstdint>
#include <type_traits>

#include "trace/prefix.h"

/// Developer diagnostics. Outside a diagnostic build (the CMake option ZUZIPTRA_TRACE) the entry point does nothing and
/// leaves no code behind; in one it hands a line to the debugger: a prefix that names the site, then the text.
namespace nTrace {

/// Categories: the bits of the mask that ZUZIPTRA_TRACE_MASK lets through.
inline constexpr std::uint32_t libraries = 0x1000;
inline constexpr std::uint32_t descriptions = 0x2000;
inline constexpr std::uint32_t errors = 0x4000;

inline constexpr bool enabled = ZUZIPTRA_TRACE != 0;
inline constexpr std::uint32_t mask = ZUZIPTRA_TRACE_MASK;

/// A printf format together with the place that it stands in.
struct Format {
    const char* text;
    Site site;

    // Implicit, so that a call reads like printf; the compiler fills in the caller's place.
    // NOLINTNEXTLINE(google-explicit-constructor,hicpp-explicit-conversions)
    consteval Format(const char* literal, const char* file = __builtin_FILE(), std::uint32_t line = __builtin_LINE())
        : text(literal), site{file, "zuZiptraRemoteService", line} {}
};

/// Formats and writes one line whatever the category; longer lines are cut. Any thread; never throws.
void writeLine(const Site& site, const char* format, ...) noexcept;

/// The trace entry point. The arguments are those of printf.
template <class... Arguments>
void trace([[maybe_unused]] std::uint32_t category, [[maybe_unused]] Format format,
           [[maybe_unused]] Arguments... arguments) noexcept {
    static_assert((std::is_scalar_v<Arguments> && ...), "printf takes numbers and pointers only");
    if constexpr (enabled) {
        if ((category & mask) != 0) writeLine(format.site, format.text, arguments...);
    }
}

}  // namespace nTrace
