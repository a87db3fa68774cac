#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "tool/check/fileFindings.h"

namespace nCheck {

/// Finds what is surprising about the value of "Requires". `mask` is what the host reads; if the number does not fit,
/// it is set to what the host reads on Windows.
void findInRequires(std::string_view value, int line, std::uint32_t& mask, tFileFindings& findings);

/// Finds that the machine allows none of the required features. A mask of 0 is not its business.
void findUnallowed(std::uint32_t mask, std::uint32_t allowedMask, std::optional<int> line, tFileFindings& findings);

}  // namespace nCheck
