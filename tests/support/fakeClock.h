#pragma once

#include <cstdint>

namespace support {

/// Replaces the product's clock with one whose time the test sets. At most one may exist at a time.
class tFakeClock {
public:
    /// Sets the tick's length in units of 100 nanoseconds, by default one millisecond.
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
    std::uint64_t msPerReading = 0;  ///< how far the clock advances before each reading
    std::uint32_t timeIncrement;
    std::uint64_t counterFrequency = 1'000'000'000;
};

}  // namespace support
