#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

/// File-system paths as the UTF-8 text that the rest of the program uses, independent of the system's narrow encoding
/// and locale. Every path survives the round trip, on Windows also one whose names are not valid UTF-16.
namespace nStdPath {

[[nodiscard]] boost::filesystem::path pathFromUtf8(const std::string& text);
[[nodiscard]] std::string pathToUtf8(const boost::filesystem::path& path);

/// For calls that take a wide path.
[[nodiscard]] std::wstring widePathFromUtf8(const std::string& text);

}  // namespace nStdPath
