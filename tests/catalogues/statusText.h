#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace catalogues {

/// A status file, read line by line without the product's or the tool's reader.
struct tStatusText {
    struct tPlugin {
        std::string heading;  ///< "NAME (depends on A, B)"
        std::string path;
        std::string requiresText;
        std::string label;  ///< of its first call; empty if none is shown
        std::int32_t code = 0;
    };

    std::string allowed;
    std::vector<std::string> messages;
    std::vector<tPlugin> plugins;
};

/// Requires: the text was written before the plug-ins were stopped. Throws std::runtime_error if it is no status file.
[[nodiscard]] tStatusText readStatusText(const std::string& bytes);

/// What the host adds to its messages if the query of the deployment setting fails.
inline constexpr const char* noFrameworkMessage = "Cannot init system framework";
inline constexpr const char* notFoundMessage = "Deployment setting not found";

}  // namespace catalogues
