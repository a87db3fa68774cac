#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nRun {

/// What the process that runs plug-ins is told.
struct tOrder {
    std::vector<std::string> files;  ///< descriptions (UTF-8 paths)
    std::size_t times = 1;           ///< how many lives
    std::uint32_t allowedMask = 0xFFFFFFFF;
    bool keepLoaded = false;  ///< the libraries are loaded before the first life and stay loaded after each
};

/// Returns the order as text.
[[nodiscard]] std::string toText(const tOrder& order);

/// Returns nullopt if the text is not a whole order, because its writer was interrupted.
[[nodiscard]] std::optional<tOrder> readOrder(std::string_view text);

}  // namespace nRun
