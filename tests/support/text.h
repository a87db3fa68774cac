#pragma once

#include <string>
#include <string_view>

namespace support {

/// Returns how often a part occurs in a text.
inline int occurrences(std::string_view text, std::string_view part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

}  // namespace support
