#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "source/tPluginManager.h"

/// What the status file shows. The texts and entries are borrowed.
struct tStatusContent {
    std::string_view updated;  ///< the time of writing, with its line break
    std::uint32_t allowedMask = 0xFFFFFFFF;
    std::uint64_t initTimeMs = 0;  ///< not shown if 0
    std::string_view messages;     ///< one line for each
    std::span<const tPluginEntry> entries;
};

/// Returns the text of the status file. Its lines end with LF; carriage returns in it are not written to the file.
[[nodiscard]] std::string statusText(const tStatusContent& content);
