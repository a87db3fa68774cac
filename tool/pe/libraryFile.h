#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "tool/pe/library.h"

namespace nPe {

/// Larger files than this are mapped instead of being read into memory. (A file that another program truncates while it
/// is mapped would end this one, so only those are mapped that are too large to be read.)
inline constexpr std::uint64_t largestBuffer = 16 << 20;

/// Larger files than this cannot be libraries: addresses inside a library have 32 bits.
inline constexpr std::uint64_t largestLibrary = 0xFFFFFFFF;

/// Reads the library in the file at this UTF-8 path. What cannot be opened or read, or is no plain file, such as a
/// pipe, is unreadable. Throws std::bad_alloc.
[[nodiscard]] std::variant<tLibrary, tUnreadable> readFile(const std::string& path);

}  // namespace nPe
