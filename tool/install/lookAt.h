#pragma once

#include <cstdint>
#include <string>

#include "tool/install/system.h"

/// The platform's part of tSystem, on Windows only.
namespace nInstall {

/// Looks at this machine. Throws tCannot.
[[nodiscard]] tMachine lookAt(const tAccess& access);

/// As tSystem::reason.
[[nodiscard]] std::string reasonOf(std::uint32_t error);

}  // namespace nInstall
