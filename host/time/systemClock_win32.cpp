#include <windows.h>

#include "time/systemClock.h"

namespace nTime {

std::uint32_t timeIncrement100ns() noexcept {
    DWORD adjustment = 0;
    DWORD increment = 0;
    BOOL adjustmentDisabled = FALSE;
    return GetSystemTimeAdjustment(&adjustment, &increment, &adjustmentDisabled) == FALSE ? 0 : increment;
}

std::uint64_t uptimeMs() noexcept { return GetTickCount64(); }

std::uint64_t counterFrequencyHz() noexcept {
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    return static_cast<std::uint64_t>(frequency.QuadPart);
}

}  // namespace nTime
