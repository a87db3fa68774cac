#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Paths and names of files as Windows and its loader read them, whatever the system that asks: both kinds of slashes
/// separate folders. Pure: no file is looked at.
namespace nPe {

/// Returns the text with A to Z in lower case. Names of libraries are compared without regard to case, and are ASCII.
[[nodiscard]] std::string toLowerAscii(std::string_view text);

/// Returns what precedes the last separator; the root of a drive or system keeps it: "C:\" or "/". Empty without one.
[[nodiscard]] std::string folderOf(std::string_view path);

/// Returns what follows the last separator.
[[nodiscard]] std::string fileNameOf(std::string_view path);

/// Returns the path of a file in a folder. An empty folder is the current one.
[[nodiscard]] std::string joined(std::string_view folder, std::string_view name);

/// Returns the parts of a path between its separators, without "." and "..", and as Windows does without dots and
/// blanks at their ends.
[[nodiscard]] std::vector<std::string> partsOf(std::string_view path);

/// Returns whether a path with these parts is that of the folder, or of something in it.
[[nodiscard]] bool isInside(const std::vector<std::string>& parts, const std::vector<std::string>& folder);

/// Returns the path without blanks at its end, and with ".dll" if the file's name has no dot: the loader looks for
/// that.
[[nodiscard]] std::string withExtension(std::string_view path);

/// Returns whether the loader searches for the path along its folders: it begins with neither a drive nor a separator.
[[nodiscard]] bool isSearched(std::string_view path) noexcept;

/// Returns whether the path begins with "\??\", as paths do inside Windows.
[[nodiscard]] bool isNative(std::string_view path) noexcept;

/// Returns the path as seen from the current folder: "x.dll", "\x.dll" and "C:x.dll" depend on it. On another drive
/// than the current folder's, the drive's root is assumed to be current. Requires: a current folder that begins with a
/// drive, such as "C:\Windows". A native path is taken literally, as one that begins with "\\?\".
[[nodiscard]] std::string absolutePath(std::string_view path, std::string_view currentFolder);

}  // namespace nPe
