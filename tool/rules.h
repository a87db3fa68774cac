#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tool/finding.h"

/// One kind of finding.
struct tRule {
    std::string_view id;  ///< lower case, with hyphens; never changes
    tSeverity severity;
    std::string_view title;   ///< what is wrong, a few words
    std::string_view cause;   ///< why it matters: what the host does about it
    std::string_view remedy;  ///< what to do
};

/// The table of all findings: `check` and `audit` make them, `explain` and the documents describe them.
namespace nRules {

[[nodiscard]] std::span<const tRule> all() noexcept;

/// Returns null if there is no rule of this id.
[[nodiscard]] const tRule* find(std::string_view id) noexcept;

/// Returns a finding of this rule, with the rule's severity and remedy.
/// Requires: a rule of this id.
[[nodiscard]] tFinding finding(std::string_view id, std::string file, std::optional<int> line,
                               std::optional<std::string> plugin, std::string message);

}  // namespace nRules
