#include "tool/graph/dependencyGraph.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "tool/check/prediction.h"
#include "tool/components.h"
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

/// Returns whether the nodes of a component, or its only node, depend on themselves.
bool isCircle(const std::vector<std::size_t>& component, const nComponents::tGraph& successors) {
    const std::size_t node = component.front();
    const std::vector<std::size_t>& next = successors[node];
    return component.size() > 1 || std::find(next.begin(), next.end(), node) != next.end();
}

/// Returns the number of the circle on which each node is, from 1 in the order of their first nodes; 0 if it is on
/// none.
std::vector<std::size_t> findCircles(const nComponents::tGraph& successors) {
    std::vector<std::vector<std::size_t>> components = nComponents::find(successors);
    std::erase_if(components, [&](const auto& component) { return !isCircle(component, successors); });
    std::ranges::sort(components, {}, [](const auto& component) { return *std::ranges::min_element(component); });
    std::vector<std::size_t> circles(successors.size(), 0);
    for (std::size_t i = 0; i < components.size(); ++i) {
        for (const std::size_t node : components[i]) circles[node] = i + 1;
    }
    return circles;
}

}  // namespace

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
