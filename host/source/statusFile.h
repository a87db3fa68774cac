#pragma once

#include <cstdio>
#include <string>

/// The platform's part of replacing the status file. Paths are UTF-8 in any script, up to the system's limit (on
/// Windows 260 characters unless long paths are switched on); every call with a path that is not valid UTF-8 fails.
namespace nStatusFile {

/// Opens for writing as text, emptied if it exists, with sharing that denies nobody. The caller closes it. Returns null
/// on failure.
[[nodiscard]] std::FILE* open(const std::string& path);

/// Returns false on failure; a missing file is one.
bool remove(const std::string& path);

/// Returns false on failure. A file that already has the new name is never replaced.
[[nodiscard]] bool rename(const std::string& from, const std::string& to);

/// Returns the current local time as 24 characters (Mon Nov 16 03:26:40 2026) and a line break, or the line break alone
/// if the C library has no text for it.
[[nodiscard]] std::string currentTimeText();

}  // namespace nStatusFile
