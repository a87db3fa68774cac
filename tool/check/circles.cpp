#include "tool/check/circles.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace nCheck {
namespace {

/// Finds the strongly connected components of a graph: Tarjan's algorithm, with a stack of its own instead of
/// recursion, which a long chain would exhaust.
class tComponents {
public:
    using tGraph = std::vector<std::vector<std::size_t>>;  ///< the neighbours of each node

    explicit tComponents(const tGraph& graph) : graph_(graph), nodes_(graph.size()) {
        for (std::size_t node = 0; node < graph.size(); ++node) {
            if (nodes_[node].index == unvisited) visit(node);
        }
    }

    [[nodiscard]] std::vector<std::vector<std::size_t>> take() { return std::move(components_); }

private:
    static constexpr std::size_t unvisited = std::numeric_limits<std::size_t>::max();

    struct tNode {
        std::size_t index = unvisited;  ///< when it was first visited
        std::size_t lowest = 0;         ///< the earliest node of its component known so far
        std::size_t nextNeighbour = 0;
        bool isOpen = false;  ///< whether its component is not complete yet
    };

    void visit(std::size_t root) {
        enter(root);
        while (!path_.empty()) {
            const std::size_t node = path_.back();
            if (nodes_[node].nextNeighbour == graph_[node].size()) {
                leave(node);
            } else {
                follow(node, graph_[node][nodes_[node].nextNeighbour++]);
            }
        }
    }

    void follow(std::size_t node, std::size_t neighbour) {
        if (nodes_[neighbour].index == unvisited) {
            enter(neighbour);
        } else if (nodes_[neighbour].isOpen) {
            nodes_[node].lowest = std::min(nodes_[node].lowest, nodes_[neighbour].index);
        }
    }

    void enter(std::size_t node) {
        nodes_[node].index = nodes_[node].lowest = visited_++;
        nodes_[node].isOpen = true;
        path_.push_back(node);
        open_.push_back(node);
    }

    void leave(std::size_t node) {
        path_.pop_back();
        if (!path_.empty()) {
            std::size_t& lowest = nodes_[path_.back()].lowest;
            lowest = std::min(lowest, nodes_[node].lowest);
        }
        if (nodes_[node].lowest != nodes_[node].index) return;
        std::vector<std::size_t>& component = components_.emplace_back();
        for (std::size_t member = unvisited; member != node;) {
            member = open_.back();
            open_.pop_back();
            nodes_[member].isOpen = false;
            component.push_back(member);
        }
    }

    const tGraph& graph_;
    std::vector<tNode> nodes_;
    std::vector<std::size_t> path_;
    std::vector<std::size_t> open_;
    std::size_t visited_ = 0;
    std::vector<std::vector<std::size_t>> components_;
};

/// Returns a graph of plug-ins and, after them, names: a plug-in leads to the names on which it depends, and a name to
/// its plug-ins. Leading to the plug-ins directly would be quadratic if many have one name.
tComponents::tGraph makeGraph(const tCatalogue& catalogue) {
    tComponents::tGraph graph(catalogue.size());
    std::unordered_map<std::string_view, std::size_t> nodeOf;
    for (const auto& [name, named] : catalogue.names()) {
        nodeOf.emplace(name, graph.size());
        graph.push_back(named.plugins);
    }
    for (std::size_t plugin = 0; plugin < catalogue.size(); ++plugin) {
        for (const std::string& name : catalogue.descriptions()[plugin].dependencies) {
            const auto node = nodeOf.find(name);
            if (node != nodeOf.end()) graph[plugin].push_back(node->second);
        }
    }
    return graph;
}

/// The members of a circle that have not been arranged yet, by name.
using tWaiting = std::unordered_map<std::string_view, std::size_t>;

std::optional<std::size_t> nextOf(const tPluginDescription& description, const tWaiting& waiting) {
    for (const std::string& name : description.dependencies) {
        const auto found = waiting.find(name);
        if (found != waiting.end()) return found->second;
    }
    return std::nullopt;
}

/// Brings the members into the order that the header promises.
void arrange(std::vector<std::size_t>& members, const std::vector<tPluginDescription>& descriptions) {
    const auto nameOf = [&](std::size_t member) -> const std::string& { return descriptions[member].name; };
    std::sort(members.begin(), members.end(),
              [&](std::size_t a, std::size_t b) { return std::tie(nameOf(a), a) < std::tie(nameOf(b), b); });
    tWaiting waiting;
    for (const std::size_t member : members) waiting.emplace(nameOf(member), member);
    std::vector<std::size_t> arranged;
    for (const std::size_t start : members) {
        if (!waiting.contains(nameOf(start))) continue;
        for (std::optional<std::size_t> next = start; next; next = nextOf(descriptions[*next], waiting)) {
            waiting.erase(nameOf(*next));
            arranged.push_back(*next);
        }
    }
    members.swap(arranged);
}

}  // namespace

tCircles::tCircles(const tCatalogue& catalogue, const std::vector<bool>& mayStart) : circleOf_(catalogue.size()) {
    for (std::vector<std::size_t>& members : tComponents(makeGraph(catalogue)).take()) {
        std::erase_if(members, [&](std::size_t node) { return node >= catalogue.size(); });
        const bool harmless = std::any_of(members.begin(), members.end(), [&](std::size_t p) { return mayStart[p]; });
        if (members.size() < 2 || harmless) continue;
        for (const std::size_t member : members) circleOf_[member] = circles_.size();
        arrange(members, catalogue.descriptions());
        circles_.push_back(std::move(members));
    }
}

const std::vector<std::size_t>* tCircles::of(std::size_t plugin) const noexcept {
    const std::optional<std::size_t> circle = circleOf_[plugin];
    return circle ? &circles_[*circle] : nullptr;
}

}  // namespace nCheck
