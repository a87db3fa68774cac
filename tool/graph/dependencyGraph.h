#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nCheck {
struct tPrediction;
}
namespace nStatus {
struct tReport;
}

/// Which plug-in depends on which, and why a dependency is not there when it is needed. Pure: values in, values out.
namespace nGraph {

enum class tLinkKind {
    fulfilled,  ///< the dependency starts first (or its own code decides whether it does)
    repeated,   ///< the same, but named twice, so that the dependant never starts
    failed,     ///< the dependency fails
    late,       ///< the dependency could start, but comes later in the order
    circular,   ///< the two depend on each other, directly or through others
    missing     ///< no plug-in has this name
};

struct tNode {
    std::string name;
    std::string file;                       ///< its description; empty if unknown
    std::string path;                       ///< of its library
    std::vector<std::string> dependencies;  ///< names, sorted
    std::uint32_t requiresMask = 1;         ///< features
    std::optional<std::int32_t> code;       ///< of its start; nullopt if only running plug-ins can tell
    bool mayStart = true;    ///< false if it fails, even if only running plug-ins can tell with what code
    bool described = true;   ///< false if there are only plug-ins that depend on it
    std::size_t circle = 0;  ///< number of the circle of which it is part, from 1; 0 if none

    [[nodiscard]] bool fails() const noexcept { return !described || !mayStart; }
};

struct tLink {
    std::size_t dependant = 0;   ///< an index into the nodes
    std::size_t dependency = 0;  ///< an index into the nodes
    tLinkKind kind = tLinkKind::fulfilled;
};

struct tGraph {
    std::vector<tNode> nodes;     ///< the plug-ins in start order, then the names that no plug-in has
    std::size_t pluginCount = 0;  ///< how many of the nodes are plug-ins
    std::vector<tLink> links;     ///< one for each dependency of a plug-in, ordered by dependants, then by names
    std::vector<std::vector<std::size_t>> circles;  ///< the members of each, in start order
    std::uint32_t allowedMask = 0xFFFFFFFF;
    std::vector<std::string> messages;  ///< of the host, one for each description that it rejects, and others
};

/// Builds the graph of plug-ins that are given in start order. Several may have one name; the one that counts is the
/// first that can start. Time and memory are proportional to the names.
/// Requires: each node is described and its dependencies are sorted.
[[nodiscard]] tGraph build(std::vector<tNode> plugins, std::uint32_t allowedMask);

/// What the host will do.
[[nodiscard]] tGraph fromPrediction(const nCheck::tPrediction& prediction);

/// What the host did, as the status file tells it. A start without lines succeeded.
[[nodiscard]] tGraph fromReport(const nStatus::tReport& report);

/// Returns the links of one plug-in, ordered by the dependencies' names.
[[nodiscard]] std::span<const tLink> linksOf(const tGraph& graph, std::size_t dependant);

}  // namespace nGraph
