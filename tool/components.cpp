#include "tool/components.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace nComponents {
namespace {

/// Tarjan's algorithm, with a stack of its own instead of recursion, which a long chain would exhaust.
class tComponents {
public:
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

}  // namespace

std::vector<std::vector<std::size_t>> find(const tGraph& graph) { return tComponents(graph).take(); }

}  // namespace nComponents
