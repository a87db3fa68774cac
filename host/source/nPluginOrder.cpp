#include "source/nPluginOrder.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

#include "source/introsort.h"

namespace nPluginOrder {
namespace {

/// The last dependency is compared first: for most pairs it already precedes the other's name, which ends the search.
bool dependsOn(const tPluginDescription& dependant, const tPluginDescription& other) noexcept {
    const std::vector<std::string>& sorted = dependant.dependencies;
    return !sorted.empty() && sorted.back() >= other.name &&
           std::binary_search(sorted.begin(), sorted.end(), other.name);
}

}  // namespace

bool precedes(const tPluginDescription& a, const tPluginDescription& b) noexcept {
    const bool byName = a.name < b.name;
    const tPluginDescription& first = byName ? a : b;
    const tPluginDescription& second = byName ? b : a;
    const bool reversed = dependsOn(first, second) && !dependsOn(second, first);
    return byName != reversed;
}

std::vector<std::size_t> positionsInOrder(const std::vector<tPluginDescription>& descriptions) {
    // Cheaper to move than descriptions. Most plug-ins depend on earlier names only, so that their own decide.
    struct tItem {
        const tPluginDescription* description;
        bool mayFollowLaterName;
    };
    std::vector<tItem> items;
    items.reserve(descriptions.size());
    for (const tPluginDescription& description : descriptions) {
        const std::vector<std::string>& sorted = description.dependencies;
        items.push_back({&description, !sorted.empty() && sorted.back() >= description.name});
    }
    nIntrosort::sort(std::span(items), [](const tItem& a, const tItem& b) {
        const bool byName = a.description->name < b.description->name;
        const tItem& first = byName ? a : b;
        return first.mayFollowLaterName ? precedes(*a.description, *b.description) : byName;
    });

    std::vector<std::size_t> positions;
    positions.reserve(items.size());
    for (const tItem& item : items) {
        positions.push_back(static_cast<std::size_t>(item.description - descriptions.data()));
    }
    return positions;
}

void sort(std::vector<tPluginDescription>& descriptions) {
    const std::vector<std::size_t> positions = positionsInOrder(descriptions);
    std::vector<tPluginDescription> ordered;
    ordered.reserve(descriptions.size());
    for (const std::size_t position : positions) ordered.push_back(std::move(descriptions[position]));
    descriptions.swap(ordered);
}

}  // namespace nPluginOrder
