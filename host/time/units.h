#pragma once

#include <cstdint>

namespace nTime {

/// Time units in ascending order; the numbers are part of the interface.
enum class tUnit : std::int32_t {
    picoseconds = 0,
    nanoseconds = 1,
    microseconds = 2,
    milliseconds = 3,
    seconds = 4,
    minutes = 5,
    hours = 6,
};

/// Converts one unit at a time: divisions truncate at each step, multiplications wrap in 64 bits.
[[nodiscard]] std::uint64_t Convert(std::uint64_t value, tUnit fromUnit, tUnit toUnit) noexcept;

}  // namespace nTime
