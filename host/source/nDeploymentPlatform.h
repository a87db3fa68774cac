#pragma once

#include <cstdint>

#include "source/zusysapi.h"

/// What the deployment query asks of the platform.
namespace nDeployment {

/// Returns the framework library's entry, or null while this machine has no such library. The library is loaded here
/// and not by an import, so that the program starts without it. It must be beside the executable or in the system
/// folder: in the current directory or along PATH others may be able to plant a library of that name. It then stays
/// loaded, with one reference however often this is called; a library without the entry does not.
[[nodiscard]] nZusysapi::InstantiateFramework2 findFrameworkEntry();

/// Blocks the calling thread.
void sleepMs(std::uint32_t milliseconds) noexcept;

}  // namespace nDeployment
