#pragma once

#include <cstdio>
#include <string>

/// What replacing the status file asks of the platform. Paths are UTF-8 in any script, as long as the system lets them
/// be (on Windows above 260 characters only where long paths are switched on); a path that is not valid UTF-8 names no
/// file, so every call with it fails.
namespace nStatusFile {

/// Opens for writing as text, emptied if it exists, with sharing that denies nobody. The caller closes it. Null on
/// failure.
[[nodiscard]] std::FILE* open(const std::string& path);

/// False on failure; that the file was missing is one.
bool remove(const std::string& path);

/// False on failure. A file that has the new name already is never replaced.
[[nodiscard]] bool rename(const std::string& from, const std::string& to);

/// The current local time as 24 characters (Mon Nov 16 03:26:40 2026) and a line break; the line break alone when the
/// C library has no text for it.
[[nodiscard]] std::string currentTimeText();

}  // namespace nStatusFile
