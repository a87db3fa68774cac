#include "tool/graph/dependencyGraph.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "tool/check/prediction.h"
#include "tool/status/statusReport.h"

namespace nGraph {
namespace {

/// The plug-in that a name means: the first that can start, or else the first.
class tNames {
public:
    explicit tNames(const std::vector<tNode>& plugins) {
        for (std::size_t index = 0; index < plugins.size(); ++index) {
            const auto [known, added] = indices_.emplace(plugins[index].name, index);
            if (!added && plugins[known->second].fails() && !plugins[index].fails()) known->second = index;
        }
    }

    [[nodiscard]] std::optional<std::size_t> find(const std::string& name) const {
        const auto found = indices_.find(name);
        return found == indices_.end() ? std::nullopt : std::optional(found->second);
    }

    void add(const std::string& name, std::size_t index) { indices_.emplace(name, index); }

private:
    std::unordered_map<std::string, std::size_t> indices_;
};

/// Adds one link for each name on which the plug-in depends; a name that no plug-in has becomes a node of its own.
/// The kinds tell only what the list itself shows: repeated or missing.
void addLinks(tGraph& graph, tNames& names, std::size_t dependant) {
    const std::vector<std::string> dependencies = graph.nodes[dependant].dependencies;
    for (std::size_t i = 0; i < dependencies.size(); ++i) {
        const std::string& name = dependencies[i];
        const auto known = names.find(name);
        if (i > 0 && dependencies[i - 1] == name) {
            if (graph.links.back().kind == tLinkKind::fulfilled) graph.links.back().kind = tLinkKind::repeated;
            continue;
        }
        if (!known) {
            names.add(name, graph.nodes.size());
            graph.nodes.emplace_back().name = name;
            graph.nodes.back().described = false;
        }
        const std::size_t dependency = known.value_or(graph.nodes.size() - 1);
        const bool described = graph.nodes[dependency].described;
        graph.links.push_back({dependant, dependency, described ? tLinkKind::fulfilled : tLinkKind::missing});
    }
}

std::vector<std::vector<std::size_t>> dependenciesByNode(const tGraph& graph) {
    std::vector<std::vector<std::size_t>> dependencies(graph.nodes.size());
    for (const tLink& link : graph.links) dependencies[link.dependant].push_back(link.dependency);
    return dependencies;
}

/// Finds out why a dependency on a plug-in is not there when it is needed.
void classify(const tGraph& graph, tLink& link) {
    if (link.kind == tLinkKind::missing) return;
    const tNode& dependency = graph.nodes[link.dependency];
    if (link.dependency < link.dependant && !dependency.fails()) return;
    const bool sameCircle = dependency.circle != 0 && dependency.circle == graph.nodes[link.dependant].circle;
    link.kind = sameCircle ? tLinkKind::circular : dependency.fails() ? tLinkKind::failed : tLinkKind::late;
}

/// Tarjan's algorithm, with a stack of its own instead of recursion.
class tCircleFinder {
public:
    explicit tCircleFinder(const std::vector<std::vector<std::size_t>>& successors)
        : successors_(successors),
          seen_(successors.size(), 0),
          lowest_(successors.size(), 0),
          parts_(successors.size()) {
        for (std::size_t node = 0; node < successors.size(); ++node) {
            if (seen_[node] == 0) visit(node);
        }
    }

    std::vector<std::size_t> takeParts() { return std::move(parts_); }

private:
    struct tFrame {
        std::size_t node;
        std::size_t next = 0;
    };

    void enter(std::size_t node) {
        seen_[node] = lowest_[node] = ++count_;
        open_.push_back(node);
        frames_.push_back({node});
    }

    void visit(std::size_t root) {
        enter(root);
        while (!frames_.empty()) {
            tFrame& frame = frames_.back();
            const std::size_t node = frame.node;
            if (frame.next == successors_[node].size()) {
                leave(node);
                continue;
            }
            const std::size_t successor = successors_[node][frame.next++];
            if (seen_[successor] == 0) {
                enter(successor);
            } else if (parts_[successor] == 0) {
                lowest_[node] = std::min(lowest_[node], seen_[successor]);
            }
        }
    }

    /// All successors of the node have been visited. If none leads further back, it closes a part.
    void leave(std::size_t node) {
        frames_.pop_back();
        if (!frames_.empty()) {
            std::size_t& parent = lowest_[frames_.back().node];
            parent = std::min(parent, lowest_[node]);
        }
        if (lowest_[node] != seen_[node]) return;
        ++partCount_;
        std::size_t member = node;
        do {
            member = open_.back();
            open_.pop_back();
            parts_[member] = partCount_;
        } while (member != node);
    }

    const std::vector<std::vector<std::size_t>>& successors_;
    std::vector<std::size_t> seen_;    ///< when the node was first visited, from 1; 0 before
    std::vector<std::size_t> lowest_;  ///< the earliest such time that can be reached from the node
    std::vector<std::size_t> open_;    ///< visited nodes without a part
    std::vector<tFrame> frames_;
    std::size_t count_ = 0;
    std::vector<std::size_t> parts_;  ///< the part of each node, from 1
    std::size_t partCount_ = 0;
};

}  // namespace

std::vector<std::size_t> findCircles(const std::vector<std::vector<std::size_t>>& successors) {
    const std::vector<std::size_t> part = tCircleFinder(successors).takeParts();
    std::vector<std::size_t> members(successors.size() + 1, 0);
    for (const std::size_t number : part) ++members[number];
    std::vector<std::size_t> numbers(successors.size() + 1, 0);
    std::vector<std::size_t> circles(successors.size(), 0);
    std::size_t count = 0;
    for (std::size_t node = 0; node < successors.size(); ++node) {
        const auto& next = successors[node];
        const bool onCircle = members[part[node]] > 1 || std::find(next.begin(), next.end(), node) != next.end();
        if (!onCircle) continue;
        std::size_t& number = numbers[part[node]];
        if (number == 0) number = ++count;
        circles[node] = number;
    }
    return circles;
}

tGraph build(std::vector<tNode> plugins, std::uint32_t allowedMask) {
    tGraph graph;
    graph.allowedMask = allowedMask;
    graph.pluginCount = plugins.size();
    graph.nodes = std::move(plugins);
    tNames names(graph.nodes);
    for (std::size_t index = 0; index < graph.pluginCount; ++index) addLinks(graph, names, index);
    const std::vector<std::size_t> circles = findCircles(dependenciesByNode(graph));
    for (std::size_t index = 0; index < circles.size(); ++index) {
        graph.nodes[index].circle = circles[index];
        if (circles[index] == 0) continue;
        graph.circles.resize(std::max(graph.circles.size(), circles[index]));
        graph.circles[circles[index] - 1].push_back(index);
    }
    for (tLink& link : graph.links) classify(graph, link);
    return graph;
}

tGraph fromPrediction(const nCheck::tPrediction& prediction) {
    std::vector<tNode> plugins;
    plugins.reserve(prediction.plugins.size());
    for (const nCheck::tPredictedPlugin& plugin : prediction.plugins) {
        const tPluginDescription& description = plugin.description;
        plugins.push_back({description.name, plugin.file, description.path, description.dependencies,
                           description.requiresMask, plugin.code, plugin.mayStart});
    }
    tGraph graph = build(std::move(plugins), prediction.allowedMask);
    graph.messages = prediction.messages;
    return graph;
}

tGraph fromReport(const nStatus::tReport& report) {
    std::vector<tNode> plugins;
    plugins.reserve(report.plugins.size());
    for (const nStatus::tPlugin& plugin : report.plugins) {
        std::int32_t code = 0;
        for (const nStatus::tCall& call : plugin.calls) {
            if (call.phase == nStatus::tPhase::initialize) code = call.code;
        }
        plugins.push_back({std::string(plugin.name),
                           {},
                           std::string(plugin.path),
                           {plugin.dependencies.begin(), plugin.dependencies.end()},
                           plugin.requiresMask,
                           code,
                           code >= 0});
    }
    tGraph graph = build(std::move(plugins), report.allowedMask);
    graph.messages = report.messages;
    return graph;
}

std::span<const tLink> linksOf(const tGraph& graph, std::size_t dependant) {
    const auto [first, last] =
        std::equal_range(graph.links.begin(), graph.links.end(), tLink{dependant, 0, tLinkKind::fulfilled},
                         [](const tLink& a, const tLink& b) { return a.dependant < b.dependant; });
    return {first, last};
}

}  // namespace nGraph
