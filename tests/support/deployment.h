#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "source/zusysapi.h"

namespace support {

/// While it exists, the machine's framework library is the one that the test chooses, and pauses take no time. At most
/// one may exist at a time. On Windows it replaces the imports GetModuleHandleA, LoadLibraryExA, GetProcAddress,
/// FreeLibrary and Sleep; calls for other libraries are passed on to the system.
class tDeploymentPlatform {
public:
    /// `entry` is the library's entry point, or null if the library is missing on this machine.
    explicit tDeploymentPlatform(nZusysapi::InstantiateFramework2 libraryEntry = nullptr);
    ~tDeploymentPlatform();
    tDeploymentPlatform(const tDeploymentPlatform&) = delete;
    tDeploymentPlatform& operator=(const tDeploymentPlatform&) = delete;

    nZusysapi::InstantiateFramework2
        entry;                      ///< may be changed between two attempts, as if the library appeared or disappeared
    std::function<void()> onPause;  ///< called for each pause, after it has been recorded
    std::vector<std::uint32_t> pauses;  ///< in milliseconds
};

}  // namespace support
