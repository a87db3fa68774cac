#pragma once

#include <string>
#include <string_view>

/// The platform calls that replace a file.
namespace nOutputFile {

/// Does what replace() does. Returns an empty text, or the system's reason for the failure.
[[nodiscard]] std::string tryToReplace(const std::string& path, std::string_view content);

}  // namespace nOutputFile
