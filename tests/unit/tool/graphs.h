#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tool/graph/dependencyGraph.h"

/// Graphs for tests.
namespace support {

/// Returns a plug-in with these dependencies and this code of its start.
inline nGraph::tNode plugin(std::string name, std::vector<std::string> dependencies = {},
                            std::optional<std::int32_t> code = 0) {
    nGraph::tNode node;
    node.name = std::move(name);
    node.dependencies = std::move(dependencies);
    std::sort(node.dependencies.begin(), node.dependencies.end());
    node.code = code;
    node.mayStart = code.value_or(0) >= 0;
    return node;
}

/// Returns the graph of the plug-ins, in this start order.
inline nGraph::tGraph graphOf(std::vector<nGraph::tNode> plugins) {
    return nGraph::build(std::move(plugins), 0xFFFFFFFF);
}

/// Returns one link of each kind: Settings is fulfilled, Twice repeated, Broken failed, Late late, the two of the
/// circle circular, Gone missing.
inline nGraph::tGraph graphOfAllKinds() {
    return graphOf({plugin("Broken", {}, -52005), plugin("CircleA", {"CircleB"}, -52006),
                    plugin("CircleB", {"CircleA"}, -52006), plugin("Early", {"Late"}, -52006), plugin("Late"),
                    plugin("Lost", {"Gone"}, -52006), plugin("Settings"),
                    plugin("Twice", {"Settings", "Settings"}, -52006), plugin("User", {"Settings"}, std::nullopt),
                    plugin("Victim", {"Broken"}, -52006)});
}

/// Returns a graph of so many plug-ins with random dependencies on earlier and, now and then, on later or unknown ones.
inline nGraph::tGraph randomGraph(std::size_t count, std::uint32_t seed) {
    std::minstd_rand random(seed);
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random()) % limit; };
    std::vector<nGraph::tNode> plugins;
    for (std::size_t i = 0; i < count; ++i) {
        std::vector<std::string> dependencies;
        for (std::size_t number = below(4); i > 0 && number > 0; --number) {
            dependencies.push_back("P" + std::to_string(below(i)));
        }
        if (below(20) == 0) dependencies.push_back("P" + std::to_string(below(count + 5)));
        plugins.push_back(plugin("P" + std::to_string(i), dependencies, below(10) == 0 ? -52005 : 0));
    }
    return graphOf(std::move(plugins));
}

}  // namespace support
