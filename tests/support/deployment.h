#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "source/zusysapi.h"

namespace support {

/// While it lives, the machine's framework library is the one that the test chooses, and pauses cost no time. One at a
/// time. On Windows it replaces the imports GetModuleHandleA, LoadLibraryExA, GetProcAddress, FreeLibrary and Sleep;
/// calls about other libraries go on to the system.
class tDeploymentPlatform {
public:
    /// The entry that the library has; null: the library is not on this machine.
    explicit tDeploymentPlatform(nZusysapi::InstantiateFramework2 libraryEntry = nullptr);
    ~tDeploymentPlatform();
    tDeploymentPlatform(const tDeploymentPlatform&) = delete;
    tDeploymentPlatform& operator=(const tDeploymentPlatform&) = delete;

    nZusysapi::InstantiateFramework2 entry;  ///< may be changed between two attempts: the library comes or goes
    std::function<void()> onPause;           ///< called for each pause, after it was noted
    std::vector<std::uint32_t> pauses;       ///< in milliseconds
};

}  // namespace support
