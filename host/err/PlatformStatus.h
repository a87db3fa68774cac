#pragma once

#include <array>
#include <cstdint>

#include "err/StatusRecord.h"

namespace zuerr {

/// The fixed-size status of the platform modules (shared libraries, events), which report without allocating. Their
/// caller converts the record to a StatusRecord or an exception.
struct PlatformStatus {
    /// Records that declare fewer bytes contain only a code.
    static constexpr std::uint32_t fullSize = 208;

    std::uint32_t size = fullSize;
    std::int32_t code = 0;
    std::array<char, 10> component{};  ///< zero-terminated, cut to 9 characters
    std::array<char, 101> file{};      ///< zero-terminated; a longer path keeps its first and last 49 characters
    std::int32_t line = 0;
    std::uint64_t extension = 0;  ///< always 0

    [[nodiscard]] bool failed() const noexcept { return code < 0; }
};

/// Fills the record unless it already contains an error: the first error wins, and an error replaces a warning.
void RaiseInto(PlatformStatus& record, std::int32_t code, const char* component, const RaiseSite& site) noexcept;

/// Stores the platform's code in `record` as SetCode does and, if it was stored, writes file, line and component to the
/// report. If memory runs out, the current member and all later ones are skipped.
void ConvertPlatformStatus(const PlatformStatus& platform, StatusRecord& record) noexcept;

}  // namespace zuerr
