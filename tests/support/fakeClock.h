#pragma once

#include <cstdint>

namespace support {

/// A clock whose time passes as a test says. While one lives, it is the clock of the product. One at a time.
class tFakeClock {
public:
    /// The tick's length, in units of 100 nanoseconds: one millisecond unless said otherwise.
    explicit tFakeClock(std::uint32_t timeIncrement = 10'000);
    ~tFakeClock();
    tFakeClock(const tFakeClock&) = delete;
    tFakeClock& operator=(const tFakeClock&) = delete;

    void advance(std::uint64_t milliseconds) { nowMs += milliseconds; }
    std::uint64_t read() {
        advance(msPerReading);
        return nowMs;
    }

    std::uint64_t nowMs = 1'000;
    std::uint64_t msPerReading = 0;  ///< time that passes by itself before each reading
    std::uint32_t timeIncrement;
    std::uint64_t counterFrequency = 1'000'000'000;
};

}  // namespace support
