#pragma once

#include <filesystem>

namespace support {

/// Returns the source folder: the working folder or one above it.
inline std::filesystem::path sources() {
    std::filesystem::path folder = std::filesystem::current_path();
    while (!exists(folder / "docs" / "tool.md") && folder.has_relative_path()) folder = folder.parent_path();
    return folder;
}

}  // namespace support
