// Never shipped: lets the portable core run under native tools, with ticks of one millisecond.
#include <chrono>

#include "time/systemClock.h"

namespace nTime {

std::uint32_t timeIncrement100ns() noexcept { return 10'000; }

std::uint64_t uptimeMs() noexcept {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

std::uint64_t counterFrequencyHz() noexcept { return 1'000'000'000; }

}  // namespace nTime
