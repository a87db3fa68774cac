#pragma once

#include <cstdint>
#include <string>

#include "tool/install/access.h"

/// The platform's part of nAccess, on Windows only.
namespace nAccess {

struct tReading {
    std::uint32_t error = 0;  ///< the system's; then there is no list
    tList list;
};

/// Reads the access list of a file, folder, registry key ("HKLM\...") or service.
[[nodiscard]] tReading read(const std::string& path, tKind kind);

/// Creates a folder with the owner and access list of a text, as in install/settings.h. Returns the system's error, or
/// 0.
[[nodiscard]] std::uint32_t createFolder(const std::string& path, const std::string& text);

/// Replaces owner and access list of a folder by those of such a text. A file or a link, even if it has just been put
/// in the folder's place, is an error. Returns the system's error, or 0.
[[nodiscard]] std::uint32_t setFolder(const std::string& path, const std::string& text);

/// Returns the SID of the account that runs this program, or an empty text unless it is an administrator's that may act
/// as one.
[[nodiscard]] std::string administrator();

}  // namespace nAccess
