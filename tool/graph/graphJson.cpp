#include <nlohmann/json.hpp>
#include <utility>

#include "tool/findingJson.h"
#include "tool/graph/graphText.h"
#include "tool/graph/nodeText.h"
#include "tool/plainText.h"

namespace nGraph {
namespace {

using tJson = nlohmann::ordered_json;

tJson toJson(const tNode& node) {
    return {{"name", node.name},
            {"file", node.file},
            {"code", node.code ? tJson(*node.code) : tJson(nullptr)},
            {"mayStart", node.mayStart},
            {"circle", node.circle != 0 ? tJson(node.circle) : tJson(nullptr)}};
}

/// Lists the dependencies of each plug-in. Each of them repeats the plug-in's name, so a name of megabytes is shortened
/// there; that of the dependency is as long as in the description.
tJson dependenciesOf(const tGraph& graph) {
    constexpr std::size_t longestRepeated = 200;
    tJson dependencies = tJson::array();
    std::string plugin;
    for (std::size_t i = 0; i < graph.links.size(); ++i) {
        const tLink& link = graph.links[i];
        const bool isFirst = i == 0 || graph.links[i - 1].dependant != link.dependant;
        if (isFirst) plugin = nPlainText::shortened(graph.nodes[link.dependant].name, longestRepeated);
        const tNode& dependency = graph.nodes[link.dependency];
        dependencies.push_back({{"plugin", plugin},
                                {"order", link.dependant + 1},
                                {"dependsOn", dependency.name},
                                {"dependsOnOrder", dependency.described ? tJson(link.dependency + 1) : tJson(nullptr)},
                                {"state", kindName(link.kind)}});
    }
    return dependencies;
}

/// Lists the members of each circle in start order.
tJson circlesOf(const tGraph& graph) {
    tJson circles = tJson::array();
    for (const auto& members : graph.circles) {
        tJson names = tJson::array();
        for (const std::size_t member : members) names.push_back(graph.nodes[member].name);
        circles.push_back(std::move(names));
    }
    return circles;
}

}  // namespace

std::string toJson(const tGraph& graph, const std::string& directory) {
    tJson plugins = tJson::array();
    tJson missing = tJson::array();
    for (const tNode& node : graph.nodes) {
        if (node.described) {
            plugins.push_back(toJson(node));
        } else {
            missing.push_back(node.name);
        }
    }
    return nJson::toText({{"schema", 1},
                          {"directory", directory},
                          {"allowed", graph.allowedMask},
                          {"messages", graph.messages},
                          {"plugins", std::move(plugins)},
                          {"dependencies", dependenciesOf(graph)},
                          {"circles", circlesOf(graph)},
                          {"missing", std::move(missing)}});
}

}  // namespace nGraph
