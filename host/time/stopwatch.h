#pragma once

#include <cstdint>

#include "time/clock.h"

namespace nTime {

/// Measures the time since its construction in whole clock ticks. Thread: any, one at a time.
class tStopwatch {
public:
    tStopwatch() noexcept : start_(nowInTickLengthUnit()) {}

    /// Returns whole milliseconds, truncated.
    [[nodiscard]] std::uint64_t elapsedMs() const noexcept {
        return Convert(nowInTickLengthUnit() - start_, gClockSettings.tickLengthUnit, tUnit::milliseconds);
    }

private:
    std::uint64_t start_;
};

}  // namespace nTime
