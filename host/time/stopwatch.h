#pragma once

#include <cstdint>

#include "time/clock.h"

namespace nTime {

/// Measures from its construction on, in whole clock ticks. One thread.
class tStopwatch {
public:
    tStopwatch() noexcept : start_(NowInTickLengthUnit()) {}

    /// Whole milliseconds, truncated.
    [[nodiscard]] std::uint64_t elapsedMs() const noexcept {
        return Convert(NowInTickLengthUnit() - start_, gClockSettings.tickLengthUnit, Unit::milliseconds);
    }

private:
    std::uint64_t start_;
};

}  // namespace nTime
