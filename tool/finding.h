#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class tSeverity { error, warning, note };

/// One observation, as a compiler would report it. Texts are UTF-8.
struct tFinding {
    std::string id;  ///< of its rule, see rules.h
    tSeverity severity = tSeverity::error;
    std::string file;                   ///< path, as given or listed; empty if it is unknown
    std::optional<int> line;            ///< from 1; none if the whole file is meant
    std::optional<std::string> plugin;  ///< the plug-in's name, if it has one
    std::string message;                ///< one sentence without a final stop
    std::string remedy;                 ///< one sentence that says what to do
};

namespace nFinding {

/// Returns "error", "warning" or "note".
[[nodiscard]] std::string_view severityName(tSeverity severity) noexcept;

/// Returns "FILE:LINE: error: MESSAGE [ID]", or less if there is no file or line; with colours if asked for. No line
/// break.
[[nodiscard]] std::string toText(const tFinding& finding, bool colour);

/// Returns whether the findings make the exit code 1: an error does, a warning only if strict.
[[nodiscard]] bool matter(const std::vector<tFinding>& findings, bool strict) noexcept;

}  // namespace nFinding
