#pragma once

#include <span>
#include <string_view>

namespace nNew {

/// A file of sdk/templates, in which "@NAME@" is the plug-in's name.
struct tTemplate {
    std::string_view language;  ///< its folder; "common" belongs to every language
    std::string_view file;      ///< the name that the file has in a project
    std::string_view content;
};

/// Returns the templates, which the build embeds.
[[nodiscard]] std::span<const tTemplate> templates() noexcept;

}  // namespace nNew
