#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>

#include "err/Allocator.h"
#include "err/StatusRecord.h"

/// Where the maker's software keeps what it shares on this machine. Results are UTF-8 without trailing separators.
/// An operation does nothing when the status record holds an error already, and fills it (-52006) when it fails.
namespace nStdPath {

using tWideBuffer = zuerr::Buffer<char16_t>;

/// The maker's shared directory, from the installer's registry value ZUSHAREDDIR64. Left untouched on failure.
void getSharedDirectory(std::string& result, zuerr::StatusRecord& status);

/// The maker's folder under the machine-wide application-data folder. After a failure the result is of no use.
void getCommonAppDataDirectory(std::string& result, zuerr::StatusRecord& status);

/// Where the plug-in descriptions lie: <shared directory>\ZiptraRemoteService\plugins.
/// Throws zuerr::Exception (-52006) when the shared directory is not known.
[[nodiscard]] boost::filesystem::path getPluginDirectory();

/// Removes white space, zeros and backslashes from the end, then white space from the beginning.
void trimPath(std::string& path);

/// Appends the UTF-8 form of UTF-16 text. Nothing is refused: a high surrogate is paired with whatever follows it,
/// and a lone low one becomes three bytes of its own.
void wideToUtf8(const char16_t* begin, const char16_t* end, std::string& result);

/// File-system paths as the UTF-8 text that the rest of the program uses, whatever the system's narrow encoding.
/// Names that are no valid UTF-16 survive the round trip.
[[nodiscard]] boost::filesystem::path pathFromUtf8(const std::string& text);
[[nodiscard]] std::string pathToUtf8(const boost::filesystem::path& path);

/// The platform's readers. On success the buffer holds what the system gave, terminating zeros included.
void readRegistryString(const char16_t* keyPath, const char16_t* valueName, std::uint32_t flags,
                        tWideBuffer& wideBuffer, zuerr::StatusRecord& status);
void getKnownFolder(std::int32_t csidl, tWideBuffer& wideBuffer, zuerr::StatusRecord& status);

/// What a failed system call leaves behind for a report.
struct tSystemError {
    const char* api;      ///< "win32" or "hresult": which kind of code
    std::uint32_t code;   ///< an HRESULT is shown signed, a Win32 error unsigned
    const char* message;  ///< the system's text for it; null for an HRESULT
};

/// Raises -52006 into the record with the system's error and what was being done.
void raiseSystemError(zuerr::StatusRecord& status, std::int32_t line, const tSystemError& error,
                      const char* description) noexcept;

}  // namespace nStdPath
