#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tool/finding.h"

namespace nCheck {

/// Collects the findings of one file. Of a kind that fills the file, the first twenty are kept, and the last of these
/// says how many there are.
class tFileFindings {
public:
    explicit tFileFindings(std::string file) : file_(std::move(file)) {}

    /// Adds a finding of this rule (see nRules), with the rule's remedy unless there is a better one.
    void add(std::string_view rule, std::optional<int> line, std::string message, std::string remedy = {});

    /// Returns the findings, by line, those for the whole file last. They name the plug-in unless it has no name.
    [[nodiscard]] std::vector<tFinding> take(const std::string& plugin);

    [[nodiscard]] const std::string& file() const noexcept { return file_; }

private:
    struct tCount {
        std::size_t all = 0;
        std::size_t lastKept = 0;  ///< its position among the findings
    };

    std::string file_;
    std::vector<tFinding> findings_;
    std::unordered_map<std::string_view, tCount> counts_;  ///< by rule
};

}  // namespace nCheck
