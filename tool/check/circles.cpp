#include "tool/check/circles.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "tool/components.h"

namespace nCheck {
namespace {

/// Returns a graph of plug-ins and, after them, names: a plug-in leads to the names on which it depends, and a name to
/// its plug-ins. Leading to the plug-ins directly would be quadratic if many have one name.
nComponents::tGraph makeGraph(const tCatalogue& catalogue) {
    nComponents::tGraph graph(catalogue.size());
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
    std::ranges::sort(members, {}, [&](std::size_t member) {
        return std::pair<std::string_view, std::size_t>(nameOf(member), member);
    });
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

/// Returns whether each plug-in comes after all those on which it depends, so that there are no circles.
bool isInOrder(const tCatalogue& catalogue) {
    for (const std::size_t plugin : catalogue.order()) {
        for (const std::string& name : catalogue.descriptions()[plugin].dependencies) {
            const tNamed* const named = catalogue.named(name);
            if (named != nullptr && catalogue.rank(named->plugins.back()) >= catalogue.rank(plugin)) return false;
        }
    }
    return true;
}

}  // namespace

tCircles::tCircles(const tCatalogue& catalogue, const std::vector<bool>& mayStart) {
    if (isInOrder(catalogue)) return;
    circleOf_.resize(catalogue.size());
    for (std::vector<std::size_t>& members : nComponents::find(makeGraph(catalogue))) {
        std::erase_if(members, [&](std::size_t node) { return node >= catalogue.size(); });
        const bool harmless = std::any_of(members.begin(), members.end(), [&](std::size_t p) { return mayStart[p]; });
        if (members.size() < 2 || harmless) continue;
        for (const std::size_t member : members) circleOf_[member] = circles_.size();
        arrange(members, catalogue.descriptions());
        circles_.push_back(std::move(members));
    }
}

const std::vector<std::size_t>* tCircles::of(std::size_t plugin) const noexcept {
    if (circleOf_.empty()) return nullptr;
    const std::optional<std::size_t> circle = circleOf_[plugin];
    return circle ? &circles_[*circle] : nullptr;
}

}  // namespace nCheck
