#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>

#include "err/Allocator.h"
#include "err/StatusRecord.h"

/// The folders that the vendor's programs share on this machine. Results are UTF-8 without trailing separators.
/// An operation does nothing if the status record already contains an error, and fills it (-52006, or -52000 when
/// memory runs out) if it fails.
namespace nStdPath {

/// The UTF-16 buffer that the platform's readers fill.
using tWideBuffer = zuerr::WideBuffer;

/// Reads the vendor's shared directory from the installer's registry value ZUSHAREDDIR64. On failure `result` is
/// unchanged.
void getSharedDirectory(std::string& result, zuerr::StatusRecord& status);

/// Sets `result` to the vendor's folder under the machine-wide application-data folder. After a failure its content is
/// unspecified.
void getCommonAppDataDirectory(std::string& result, zuerr::StatusRecord& status);

/// Returns the folder of the plug-in descriptions: <shared directory>\ZiptraRemoteService\plugins. A shared directory
/// that is the root of a drive, such as "C:\", loses its backslash too, and the path is then relative to the drive's
/// current directory. Throws zuerr::Exception (-52006) if the shared directory is unknown.
[[nodiscard]] boost::filesystem::path getPluginDirectory();

/// Removes white space, zeros and backslashes from the end, and white space from the beginning.
void trimPath(std::string& path);

/// The platform's readers. On success the buffer contains the system's text, including terminating zeros. A registry
/// value is treated as UTF-16 regardless of its type, and an odd last byte is dropped; `flags` is ignored.
void readRegistryString(const char16_t* keyPath, const char16_t* valueName, std::uint32_t flags,
                        tWideBuffer& wideBuffer, zuerr::StatusRecord& status);
/// Looks up a folder by its CSIDL. The buffer then contains 260 characters: the path, padded with zeros.
void getKnownFolder(std::int32_t csidl, tWideBuffer& wideBuffer, zuerr::StatusRecord& status);

}  // namespace nStdPath
