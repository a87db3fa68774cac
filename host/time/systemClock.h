#pragma once

#include <cstdint>

/// The platform calls that the clock needs. Internal to time/.
namespace nTime {

/// Returns the length of one tick in units of 100 nanoseconds, or 0 if the system call fails.
[[nodiscard]] std::uint32_t timeIncrement100ns() noexcept;

/// Returns the milliseconds since the system started.
[[nodiscard]] std::uint64_t uptimeMs() noexcept;

/// Returns the frequency of the high-resolution counter.
[[nodiscard]] std::uint64_t counterFrequencyHz() noexcept;

}  // namespace nTime
