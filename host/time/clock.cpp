#include "time/clock.h"

#include <cstdlib>

#include "time/systemClock.h"

namespace nTime {
namespace {

static_assert(sizeof(tClockSettings::initialised) == 1);
static_assert(sizeof(tClockSettings::tickLength) == 8 && sizeof(tClockSettings::counterPeriod) == 8);
static_assert(sizeof(tClockSettings::tickLengthUnit) == 4 && sizeof(tClockSettings::counterPeriodUnit) == 4);

constexpr std::uint64_t picosecondsPerSecond = 1'000'000'000'000;
constexpr std::uint32_t nanosecondsPerIncrementUnit = 100;
constexpr std::uint32_t usualIncrement = 156'250;  // 15.625 ms

/// If the system call fails, returns the last known increment or else the usual one: both readings of a duration must
/// count the same ticks.
std::uint32_t currentIncrement() noexcept {
    const std::uint32_t increment = timeIncrement100ns();
    if (increment != 0) return increment;
    if (!gClockSettings.initialised) return usualIncrement;
    return static_cast<std::uint32_t>(gClockSettings.tickLength / nanosecondsPerIncrementUnit);
}

}  // namespace

tClockSettings gClockSettings{};

void InitialiseClock() noexcept {
    gClockSettings.tickLengthUnit = tUnit::nanoseconds;
    gClockSettings.counterPeriodUnit = tUnit::picoseconds;
    gClockSettings.tickLength = std::uint64_t{currentIncrement()} * nanosecondsPerIncrementUnit;
    const std::uint64_t frequency = counterFrequencyHz();
    if (frequency == 0) std::abort();
    gClockSettings.counterPeriod = picosecondsPerSecond / frequency;
    gClockSettings.initialised = true;
}

std::uint64_t ticksFromMs(std::uint64_t milliseconds, std::uint32_t timeIncrement) noexcept {
    const std::uint64_t nanoseconds = Convert(milliseconds, tUnit::milliseconds, tUnit::nanoseconds);
    const std::uint32_t tickLength = timeIncrement * nanosecondsPerIncrementUnit;
    return nanoseconds / tickLength + (nanoseconds % tickLength == 0 ? 0 : 1);
}

std::uint64_t NowTicks() noexcept {
    const std::uint64_t milliseconds = uptimeMs();
    return ticksFromMs(milliseconds, currentIncrement());
}

std::uint64_t nowInTickLengthUnit() noexcept {
    if (!gClockSettings.initialised) InitialiseClock();
    return NowTicks() * gClockSettings.tickLength;
}

}  // namespace nTime
