#include "source/nPluginOrder.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "source/introsort.h"

namespace nPluginOrder {
namespace {

/// What the sort moves about in place of a description. A digest sets up to two of 64 bits for each name: where the
/// bits of a name are missing from the dependencies' bits it is no dependency, which spares most comparisons a look at
/// the list.
struct tCandidate {
    tPluginDescription* description;
    std::uint64_t nameBits;
    std::uint64_t dependencyBits;
};

std::uint64_t digest(std::string_view name) {
    const std::uint64_t hash = std::hash<std::string_view>{}(name);
    return std::uint64_t{1} << hash % 64 | std::uint64_t{1} << hash / 64 % 64;
}

tCandidate toCandidate(tPluginDescription& description) {
    tCandidate candidate{&description, digest(description.name), 0};
    for (const std::string& dependency : description.dependencies) candidate.dependencyBits |= digest(dependency);
    return candidate;
}

bool names(const tPluginDescription& dependant, const tPluginDescription& other) {
    return std::binary_search(dependant.dependencies.begin(), dependant.dependencies.end(), other.name);
}

bool names(const tCandidate& dependant, const tCandidate& other) {
    const bool mayBe = (dependant.dependencyBits & other.nameBits) == other.nameBits;
    return mayBe && names(*dependant.description, *other.description);
}

bool decide(const tPluginDescription& a, const tPluginDescription& b, bool bNamesA, bool aNamesB) {
    return bNamesA == aNamesB ? a.name < b.name : bNamesA;
}

}  // namespace

bool goesBefore(const tPluginDescription& a, const tPluginDescription& b) noexcept {
    return decide(a, b, names(b, a), names(a, b));
}

void sort(std::vector<tPluginDescription>& descriptions) {
    std::vector<tCandidate> candidates;
    candidates.reserve(descriptions.size());
    for (tPluginDescription& description : descriptions) candidates.push_back(toCandidate(description));
    nIntrosort::sort(std::span(candidates), [](const tCandidate& a, const tCandidate& b) {
        return decide(*a.description, *b.description, names(b, a), names(a, b));
    });

    std::vector<tPluginDescription> ordered;
    ordered.reserve(descriptions.size());
    for (const tCandidate& candidate : candidates) ordered.push_back(std::move(*candidate.description));
    descriptions.swap(ordered);
}

}  // namespace nPluginOrder
