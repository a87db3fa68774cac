#pragma once

#include <cstdint>

#include "tool/install/system.h"

/// The platform's part of tSystem, on Windows only.
namespace nInstall {

/// Performs a step. Returns the system's error, or 0.
[[nodiscard]] std::uint32_t perform(const tStep& step, const tAccess& access);

}  // namespace nInstall
