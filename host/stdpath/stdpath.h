#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>

#include "err/Allocator.h"
#include "err/StatusRecord.h"

/// The places that the maker's software shares on this machine. Results are UTF-8 without trailing separators.
/// An operation does nothing if the status record already contains an error, and fills it (-52006, or -52000 when
/// memory runs out) if it fails.
namespace nStdPath {

/// What the platform's readers write into, in UTF-16.
using tWideBuffer = zuerr::WideBuffer;

/// The maker's shared directory, from the installer's registry value ZUSHAREDDIR64. Unchanged on failure.
void getSharedDirectory(std::string& result, zuerr::StatusRecord& status);

/// The maker's folder under the machine-wide application-data folder. After a failure the result is changed too, and
/// is not to be used.
void getCommonAppDataDirectory(std::string& result, zuerr::StatusRecord& status);

/// Returns the folder of the plug-in descriptions: <shared directory>\ZiptraRemoteService\plugins. A shared directory
/// without a folder of its own, such as "C:\", loses its backslash like any other and is then relative to that drive.
/// Throws zuerr::Exception (-52006) if the shared directory is not known.
[[nodiscard]] boost::filesystem::path getPluginDirectory();

/// Removes white space, zeros and backslashes from the end, then white space from the beginning.
void trimPath(std::string& path);

/// The platform's readers. On success the buffer contains the system's text, terminating zeros included. A registry
/// value is treated as UTF-16 whatever its type, and is cut to whole characters; no flags are known.
void readRegistryString(const char16_t* keyPath, const char16_t* valueName, std::uint32_t flags,
                        tWideBuffer& wideBuffer, zuerr::StatusRecord& status);
/// The folder by its CSIDL. The buffer then has 260 characters, with zeros after the path.
void getKnownFolder(std::int32_t csidl, tWideBuffer& wideBuffer, zuerr::StatusRecord& status);

}  // namespace nStdPath
