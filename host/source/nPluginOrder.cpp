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

void sort(std::vector<tPluginDescription>& descriptions) {
    // Pointers are cheaper to move than descriptions.
    std::vector<tPluginDescription*> pointers;
    pointers.reserve(descriptions.size());
    for (tPluginDescription& description : descriptions) pointers.push_back(&description);
    nIntrosort::sort(std::span(pointers),
                     [](const tPluginDescription* a, const tPluginDescription* b) { return precedes(*a, *b); });

    std::vector<tPluginDescription> ordered;
    ordered.reserve(descriptions.size());
    for (tPluginDescription* const description : pointers) ordered.push_back(std::move(*description));
    descriptions.swap(ordered);
}

}  // namespace nPluginOrder
