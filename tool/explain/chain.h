#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tool/finding.h"
#include "tool/graph/dependencyGraph.h"

/// Follows a failure through the dependencies down to its causes. Pure.
namespace nExplain {

/// What is known beside the graph. The findings are borrowed.
class tClues {
public:
    /// `messages` are those of a status file or a prediction; the same one may be there twice.
    tClues(const std::vector<tFinding>& findings, const std::vector<std::string>& messages);

    /// Returns the findings that name the plug-in, errors first.
    [[nodiscard]] std::vector<tFinding> findingsOf(const std::string& plugin) const;

    /// Returns the findings in a file, errors first.
    [[nodiscard]] std::vector<tFinding> findingsIn(const std::string& file) const;

    /// Returns the path of a description that the host rejects and that is probably the plug-in's: a finding in it
    /// names the plug-in, or it has the plug-in's name but for the case and the extension.
    [[nodiscard]] std::optional<std::string> rejectedFile(const std::string& plugin) const;

private:
    std::unordered_map<std::string, std::vector<const tFinding*>> byPlugin_;
    // By the name of the file without folder and extension, in lower case: a status file from another machine names
    // the files as they are called there.
    std::unordered_map<std::string, std::vector<const tFinding*>> byStem_;
    std::unordered_map<std::string, std::string> rejected_;  ///< files by that name, or by the plug-in's in lower case
};

/// One plug-in on the way from a failure to its causes.
struct tStep {
    std::string plugin;
    std::size_t depth = 0;             ///< 0 for the plug-in in question, 1 for its dependencies, and so on
    std::optional<std::int32_t> code;  ///< of its start; nullopt if only running it can tell, or it is not described
    std::string text;                  ///< why, as the end of a sentence that begins with the plug-in's name
    std::string remedy;                ///< what to do; empty if another step is the cause
    std::vector<tFinding> findings;    ///< what `check` finds for it
};

/// Returns "FILE:LINE: REMEDY".
[[nodiscard]] std::string remedyWithPlace(const tFinding& finding);

/// Returns the plug-in and everything on which it depends that fails, each once, each before those on which it depends
/// and directly after one that depends on it. The last step of each branch is a cause.
[[nodiscard]] std::vector<tStep> followFailure(const nGraph::tGraph& graph, std::size_t plugin, const tClues& clues);

}  // namespace nExplain
