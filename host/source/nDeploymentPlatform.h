#pragma once

#include <cstdint>

#include "source/zusysapi.h"

/// The platform calls that the deployment query needs.
namespace nDeployment {

/// Returns the framework library's entry point, or null if the library or the entry point is missing. The library is
/// loaded here instead of being imported, so that the program starts without it. It is searched for only beside the
/// executable and in the system folder: elsewhere, such as along PATH, others may be able to plant a library of that
/// name. It then stays loaded, with one reference however often this is called; a library without the entry point is
/// unloaded.
[[nodiscard]] nZusysapi::InstantiateFramework2 findFrameworkEntry();

/// Blocks the calling thread.
void sleepMs(std::uint32_t milliseconds) noexcept;

}  // namespace nDeployment
