#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tool/finding.h"

namespace nCheck {

/// Collects the findings of one file. Of a kind that fills the file, the first twenty are kept, and the last of these
/// says how many there are.
class tFileFindings {
public:
    struct tWords {
        std::string message;
        std::string remedy{};  ///< empty if the rule's says enough
    };

    explicit tFileFindings(std::string file) : file_(std::move(file)) {}

    /// Adds a finding of this rule (see nRules), with the rule's remedy unless there is a better one.
    void add(std::string_view rule, std::optional<int> line, std::string message, std::string remedy = {}) {
        if (count(rule)) keep(rule, line, {std::move(message), std::move(remedy)});
    }

    /// The same for a kind that may fill a file: `describe` makes the words, and is called only if the finding is kept.
    template <std::invocable Describe>
    void add(std::string_view rule, std::optional<int> line, const Describe& describe) {
        if (count(rule)) keep(rule, line, describe());
    }

    /// Returns the findings, by line, those for the whole file last. They name the plug-in unless it has no name.
    [[nodiscard]] std::vector<tFinding> take(const std::string& plugin);

    [[nodiscard]] const std::string& file() const noexcept { return file_; }

    /// Returns the file's path and removes it. Requires: no finding is added afterwards.
    [[nodiscard]] std::string takeFile() noexcept { return std::move(file_); }

private:
    struct tCount {
        std::string_view rule;
        std::size_t all = 0;
        std::size_t lastKept = 0;  ///< its position among the findings
    };

    /// Counts a finding of this rule. Returns whether it is to be kept.
    [[nodiscard]] bool count(std::string_view rule);
    void keep(std::string_view rule, std::optional<int> line, tWords words);

    std::string file_;
    std::vector<tFinding> findings_;
    std::vector<tCount> counts_;  ///< of the few rules that the file breaks
};

}  // namespace nCheck
