#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "ini/document.h"

/// The format of a description file: an INI file whose keys are in one section.
namespace nDescriptionFormat {

inline constexpr std::uint32_t documentFlags = nIni::acceptEmptyValues | nIni::stripDoubleQuotes;
inline constexpr const char* extension = ".ini";  ///< of the file, in this case
inline constexpr std::string_view section = "Service";

namespace nKeys {

inline constexpr std::string_view name = "Name";
inline constexpr std::string_view dependencies = "Dependencies";
inline constexpr std::string_view path = "Path";
inline constexpr std::string_view requiresMask = "Requires";
inline constexpr std::string_view initialize = "Initialize";
inline constexpr std::string_view stop = "Stop";
inline constexpr std::string_view cleanup = "Cleanup";
inline constexpr std::array all{name, dependencies, path, requiresMask, initialize, stop, cleanup};

}  // namespace nKeys

}  // namespace nDescriptionFormat
