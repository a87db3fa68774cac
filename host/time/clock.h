#pragma once

#include <cstdint>

#include "time/units.h"

/// A monotonic clock that counts system clock ticks (https://learn.microsoft.com/windows/win32/sysinfo/system-time).
/// A duration is the difference of two readings times the tick length; it is never a fraction of a tick.
namespace nTime {

/// Filled once by InitialiseClock. Plain variables: a second thread that fills them writes the same values.
struct ClockSettings {
    bool initialised;
    std::uint64_t tickLength;
    Unit tickLengthUnit;
    std::uint64_t counterPeriod;  ///< of the high-resolution counter; kept for diagnostics, the clock does not use it
    Unit counterPeriodUnit;
};
extern ClockSettings gClockSettings;

void InitialiseClock() noexcept;

/// Now in ticks since the system started; a part tick counts whole.
[[nodiscard]] std::uint64_t NowTicks() noexcept;

/// Now in the tick length unit: ticks times tick length. Initialises the clock if nobody has.
[[nodiscard]] std::uint64_t NowInTickLengthUnit() noexcept;

/// What the clock asks of the platform.
[[nodiscard]] std::uint32_t readTimeIncrement() noexcept;     ///< one tick, in units of 100 nanoseconds
[[nodiscard]] std::uint64_t readTickCount() noexcept;         ///< milliseconds since the system started
[[nodiscard]] std::uint64_t readCounterFrequency() noexcept;  ///< high-resolution counts per second

/// The pure half of NowTicks.
[[nodiscard]] std::uint64_t ticksFromMilliseconds(std::uint64_t milliseconds, std::uint32_t timeIncrement) noexcept;

}  // namespace nTime
