#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>

#include "err/Allocator.h"
#include "err/StatusRecord.h"

/// Where the maker's software keeps what it shares on this machine. Results are UTF-8 without trailing separators.
/// An operation does nothing when the status record holds an error already, and fills it (-52006, or -52000 when memory
/// runs out) when it fails.
namespace nStdPath {

/// What the platform's readers write into, in UTF-16.
using tWideBuffer = zuerr::WideBuffer;

/// The maker's shared directory, from the installer's registry value ZUSHAREDDIR64. Left untouched on failure.
void getSharedDirectory(std::string& result, zuerr::StatusRecord& status);

/// The maker's folder under the machine-wide application-data folder. The result is replaced after a failure too, and
/// then of no use.
void getCommonAppDataDirectory(std::string& result, zuerr::StatusRecord& status);

/// Where the plug-in descriptions lie: <shared directory>\ZiptraRemoteService\plugins. A shared directory without a
/// folder of its own, such as "C:\", loses its backslash like any other and is then relative to that drive.
/// Throws zuerr::Exception (-52006) when the shared directory is not known.
[[nodiscard]] boost::filesystem::path getPluginDirectory();

/// Removes white space, zeros and backslashes from the end, then white space from the beginning.
void trimPath(std::string& path);

/// The platform's readers. On success the buffer holds what the system gave, terminating zeros included; a registry
/// value is taken for UTF-16 text whatever its type, and is cut to whole characters. No flags are known.
void readRegistryString(const char16_t* keyPath, const char16_t* valueName, std::uint32_t flags,
                        tWideBuffer& wideBuffer, zuerr::StatusRecord& status);
/// The folder by its CSIDL; the buffer always holds 260 characters then, with zeros behind the path.
void getKnownFolder(std::int32_t csidl, tWideBuffer& wideBuffer, zuerr::StatusRecord& status);

/// What a failed system call leaves behind for a report.
struct tSystemError {
    enum class tKind { win32, hresult };

    tKind kind = tKind::win32;
    std::uint32_t code = 0;         ///< shown unsigned; an HRESULT signed
    const char* message = nullptr;  ///< the system's text for a Win32 error; left out when null
};

/// Raises -52006 into the record with the system's error and what was being done.
void raiseSystemError(zuerr::StatusRecord& status, std::int32_t line, const tSystemError& error,
                      const char* description) noexcept;

}  // namespace nStdPath
