#include "time/clock.h"

namespace nTime {
namespace {

constexpr std::uint64_t picosecondsPerSecond = 1'000'000'000'000;
constexpr std::uint32_t nanosecondsPerIncrementUnit = 100;

}  // namespace

ClockSettings gClockSettings{};

void InitialiseClock() noexcept {
    gClockSettings.tickLengthUnit = Unit::nanoseconds;
    gClockSettings.counterPeriodUnit = Unit::picoseconds;
    gClockSettings.tickLength = std::uint64_t{readTimeIncrement()} * nanosecondsPerIncrementUnit;
    gClockSettings.counterPeriod = picosecondsPerSecond / readCounterFrequency();
    gClockSettings.initialised = true;
}

std::uint64_t ticksFromMilliseconds(std::uint64_t milliseconds, std::uint32_t timeIncrement) noexcept {
    const std::uint64_t nanoseconds = Convert(milliseconds, Unit::milliseconds, Unit::nanoseconds);
    const std::uint32_t tickLength = timeIncrement * nanosecondsPerIncrementUnit;
    return nanoseconds / tickLength + (nanoseconds % tickLength == 0 ? 0 : 1);
}

std::uint64_t NowTicks() noexcept {
    const std::uint64_t milliseconds = readTickCount();
    return ticksFromMilliseconds(milliseconds, readTimeIncrement());
}

std::uint64_t NowInTickLengthUnit() noexcept {
    if (!gClockSettings.initialised) InitialiseClock();
    return NowTicks() * gClockSettings.tickLength;
}

}  // namespace nTime
