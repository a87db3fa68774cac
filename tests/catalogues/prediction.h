#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace catalogues {

/// What `ziptra check --json` prints. Texts are UTF-8; bytes that are not valid have become U+FFFD.
struct tPrediction {
    struct tPlugin {
        std::string file;
        std::string name;
        std::vector<std::string> dependencies;
        std::string path;
        std::uint32_t requiresMask = 0;
        std::optional<std::int32_t> code;
        bool mayStart = true;
    };
    struct tFinding {
        std::string id;
        std::string severity;
        std::string file;
        std::optional<int> line;
        std::optional<std::string> plugin;
    };

    std::string directory;
    std::uint32_t allowedMask = 0;
    std::vector<std::string> messages;
    std::vector<tPlugin> plugins;
    std::vector<tFinding> findings;
};

/// Throws std::exception if the text is not such a document.
[[nodiscard]] tPrediction readPrediction(const std::string& json);

/// Returns the text as it looks after a way through JSON: with U+FFFD in place of bytes that are not valid UTF-8.
[[nodiscard]] std::string throughJson(const std::string& text);

}  // namespace catalogues
