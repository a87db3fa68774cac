#pragma once

#include <cstdint>

namespace nTime {

/// Time units in ascending order; the numbers are the system's own.
enum class Unit : std::int32_t {
    picoseconds = 0,
    nanoseconds = 1,
    microseconds = 2,
    milliseconds = 3,
    seconds = 4,
    minutes = 5,
    hours = 6,
};

/// Steps unit by unit: divisions truncate at each step, multiplications wrap in 64 bits.
[[nodiscard]] std::uint64_t Convert(std::uint64_t value, Unit fromUnit, Unit toUnit) noexcept;

}  // namespace nTime
