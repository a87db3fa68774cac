#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace support {

/// While it lives, the places that the maker's software shares on this machine are those that the test says; at first
/// there are none, as on a machine on which nothing is installed. One at a time. On Windows it replaces the imports
/// RegOpenKeyExW, RegQueryValueExW, RegCloseKey and SHGetFolderPathW; calls about other keys and folders go on to the
/// system.
class tSharedPlaces {
public:
    tSharedPlaces();
    ~tSharedPlaces();
    tSharedPlaces(const tSharedPlaces&) = delete;
    tSharedPlaces& operator=(const tSharedPlaces&) = delete;

    /// The registry value as it stands there, in UTF-8; a terminating zero is part of it only if it is given.
    std::optional<std::string> sharedDirectory;
    std::uint32_t sharedDirectoryError = 2;  ///< what reading it gives otherwise

    /// The machine-wide application-data folder in UTF-8, at most 259 characters.
    std::optional<std::string> appDataFolder;
    std::int32_t appDataFolderError = -2147024894;  ///< what asking for it gives otherwise: 0x80070002
};

}  // namespace support
