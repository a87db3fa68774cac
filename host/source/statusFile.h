#pragma once

#include <cstdio>
#include <string>

/// The platform calls that replace the status file. Paths are UTF-8, up to the system's limit (on Windows 260
/// characters unless long paths are enabled); every call fails if a path is not valid UTF-8.
namespace nStatusFile {

inline constexpr const char* fileName = "zuZiptraRemoteService.status";  ///< in the vendor's application-data folder

/// Opens the file for writing as text and truncates it if it exists; others may open it meanwhile. The caller closes
/// it. Returns null on failure.
[[nodiscard]] std::FILE* open(const std::string& path);

/// Returns false on failure, including a missing file.
bool remove(const std::string& path);

/// Returns false on failure. Never replaces a file that already has the new name.
[[nodiscard]] bool rename(const std::string& from, const std::string& to);

/// Returns the current local time as 24 characters (Mon Nov 16 03:26:40 2026) and a line break, or only the line break
/// if the C library cannot format it.
[[nodiscard]] std::string currentTimeText();

}  // namespace nStatusFile
