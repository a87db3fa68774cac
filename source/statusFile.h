#pragma once

#include <cstdio>
#include <string>

/// The file calls that replace a status file. Paths are UTF-8; a path that cannot be converted for the system fails.
namespace nStatusFile {

/// Opens for writing as text, emptied, with sharing that denies nobody. The caller closes it. Null on failure.
[[nodiscard]] std::FILE* open(const std::string& path) noexcept;
bool remove(const std::string& path) noexcept;
bool rename(const std::string& from, const std::string& to) noexcept;

/// The current local time as 24 characters and a line break (the C library's ctime form).
[[nodiscard]] std::string currentTimeText();

}  // namespace nStatusFile
