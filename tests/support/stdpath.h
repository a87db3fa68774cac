#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace support {

/// While it exists, the test chooses the folders that the vendor's programs share on this machine; initially there are
/// none, as on a machine without an installation. At most one may exist at a time. On Windows it replaces the imports
/// RegOpenKeyExW, RegQueryValueExW, RegCloseKey and SHGetFolderPathW; calls for other keys and folders are passed on to
/// the system.
class tSharedPlaces {
public:
    tSharedPlaces();
    ~tSharedPlaces();
    tSharedPlaces(const tSharedPlaces&) = delete;
    tSharedPlaces& operator=(const tSharedPlaces&) = delete;

    /// The raw registry value, in UTF-8; it has a terminating zero only if the text has one.
    std::optional<std::string> sharedDirectory;
    std::uint32_t sharedDirectoryError = 2;  ///< the result of reading it if there is none

    /// The machine-wide application-data folder in UTF-8, at most 259 characters.
    std::optional<std::string> appDataFolder;
    std::int32_t appDataFolderError = -2147024894;  ///< the result of the query if there is none: 0x80070002
};

}  // namespace support
