#include <windows.h>

#include "time/clock.h"

namespace nTime {

std::uint32_t readTimeIncrement() noexcept {
    constexpr DWORD usualIncrement = 156'250;  // 15.625 ms
    DWORD adjustment = 0;
    DWORD increment = 0;
    BOOL adjustmentDisabled = FALSE;
    const BOOL known = GetSystemTimeAdjustment(&adjustment, &increment, &adjustmentDisabled);
    if (known != FALSE && increment != 0) return increment;
    // Both readings of a duration have to count the same ticks.
    return gClockSettings.initialised ? static_cast<std::uint32_t>(gClockSettings.tickLength / 100) : usualIncrement;
}

std::uint64_t readTickCount() noexcept { return GetTickCount64(); }

std::uint64_t readCounterFrequency() noexcept {
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    return static_cast<std::uint64_t>(frequency.QuadPart);
}

}  // namespace nTime
