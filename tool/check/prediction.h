#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "source/nPluginData.h"
#include "tool/finding.h"

/// Predicts what the host does with a directory of descriptions, without running any plug-in's code.
namespace nCheck {

/// What to look at. Paths are UTF-8.
struct tRequest {
    /// Directories and description files; if empty, this machine's plug-in directory, as the host finds it.
    std::vector<std::string> places;
    /// The features that the machine allows; if empty, those of this machine: they are queried as the host does, but
    /// only once and without pauses.
    std::optional<std::uint32_t> allowedMask;
    /// Replaces a leading part of a Windows path: {"C:\\Program Files\\X", "dist"}.
    std::vector<std::pair<std::string, std::string>> folderMap;
    /// Names of plug-ins that are described elsewhere. A dependency on one of them may have started.
    std::vector<std::string> assumed;
    /// Called after each plug-in, with the number of all plug-ins. Optional.
    std::function<void(std::size_t total)> onPlugin;
};

struct tPredictedPlugin {
    std::string file;  ///< of its description
    tPluginDescription description;
    /// The Init code that the status file will show if the host itself decides it (0 or more: it starts, without code
    /// of its own); nullopt if the plug-in's own code, or that of one on which it depends, decides.
    std::optional<std::int32_t> code;
    bool mayStart = true;  ///< false if it fails for certain, even if two codes are possible
};

struct tPrediction {
    std::string directory;  ///< the directory looked at, or the first of several
    std::uint32_t allowedMask = 0xFFFFFFFF;
    std::vector<std::string> messages;      ///< as the status file will show them, without line breaks
    std::vector<tPredictedPlugin> plugins;  ///< in the order in which the host will start them
    std::vector<tFinding> findings;         ///< in the order of files and lines
};

/// A directory or file that cannot be looked at. Its text is one sentence for people.
struct tCannotLook : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Throws tCannotLook.
[[nodiscard]] tPrediction predict(const tRequest& request);

}  // namespace nCheck
