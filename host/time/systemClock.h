#pragma once

#include <cstdint>

/// What the clock asks of the platform. Internal to time/.
namespace nTime {

/// Returns the length of one tick in units of 100 nanoseconds, or 0 if the system does not say.
[[nodiscard]] std::uint32_t timeIncrement100ns() noexcept;

/// Returns the milliseconds since the system started.
[[nodiscard]] std::uint64_t uptimeMs() noexcept;

/// Returns the high-resolution counts per second.
[[nodiscard]] std::uint64_t counterFrequencyHz() noexcept;

}  // namespace nTime
