#pragma once

#include <cstdint>

#include "time/units.h"

/// A monotonic clock that counts system clock ticks (https://learn.microsoft.com/windows/win32/sysinfo/system-time).
/// A duration is the difference of two readings times the tick length; it is never a fraction of a tick.
namespace nTime {

/// Filled once by InitialiseClock. Not atomic: a second thread that fills them writes the same values.
struct tClockSettings {
    bool initialised;
    std::uint64_t tickLength;
    tUnit tickLengthUnit;
    std::uint64_t counterPeriod;  ///< of the high-resolution counter; for diagnostics, the clock does not use it
    tUnit counterPeriodUnit;
};
extern tClockSettings gClockSettings;

/// Fills the settings. Ends the process (std::abort) if the system reports a counter frequency of zero.
void InitialiseClock() noexcept;

/// Returns the ticks since the system started, rounded up.
[[nodiscard]] std::uint64_t NowTicks() noexcept;

/// Returns NowTicks times the tick length. Initialises the clock if it is not yet initialised.
[[nodiscard]] std::uint64_t nowInTickLengthUnit() noexcept;

/// Returns `milliseconds` in ticks of `timeIncrement` times 100 nanoseconds, rounded up.
[[nodiscard]] std::uint64_t ticksFromMs(std::uint64_t milliseconds, std::uint32_t timeIncrement) noexcept;

}  // namespace nTime
