#include <nlohmann/json.hpp>
#include <utility>

#include "tool/findingJson.h"
#include "tool/graph/graphText.h"
#include "tool/graph/nodeText.h"

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
    tJson dependencies = tJson::array();
    for (const tLink& link : graph.links) {
        const bool described = graph.nodes[link.dependency].described;
        dependencies.push_back({{"plugin", graph.nodes[link.dependant].name},
                                {"order", link.dependant + 1},
                                {"dependsOn", graph.nodes[link.dependency].name},
                                {"dependsOnOrder", described ? tJson(link.dependency + 1) : tJson(nullptr)},
                                {"state", kindName(link.kind)}});
    }
    const tJson document{{"schema", 1},
                         {"directory", directory},
                         {"allowed", graph.allowedMask},
                         {"messages", graph.messages},
                         {"plugins", plugins},
                         {"dependencies", dependencies},
                         {"circles", circlesOf(graph)},
                         {"missing", missing}};
    return nJson::toText(document);
}

}  // namespace nGraph
