#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace nNew {

/// The system on which a project is made. Paths: UTF-8.
struct tSystem {
    /// Creates a folder that does not exist yet. Returns an empty text, or the system's reason for the failure.
    std::function<std::string(const std::string& folder)> createFolder;
    /// Creates a file that does not exist yet. Returns an empty text, or the system's reason for the failure; then no
    /// part of the file is left.
    std::function<std::string(const std::string& file, std::string_view content)> createFile;
    /// Returns whether it has removed the file or the empty folder.
    std::function<bool(const std::string& path)> remove;
    /// Returns whether there is anything under this path.
    std::function<bool(const std::string& path)> exists;

    std::string programFolder;  ///< that of this program; empty if unknown
    bool isWindows = false;     ///< otherwise authors cross-build
};

/// Returns this system.
[[nodiscard]] tSystem thisSystem();

}  // namespace nNew
