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

/// What the sort moves about in place of a description: little, so that thousands of them stay in the cache, and enough
/// to answer nearly all questions without a look at the texts.
///
/// A dependency matters only where it runs against the order of the names; others are left out. A digest sets up to two
/// of 64 bits for each name: where the bits of a name are missing from the dependencies' bits it is none of them.
struct tCandidate {
    std::uint64_t nameKey;  ///< orders as the names do; the same for names that differ further back
    std::uint64_t nameBits;
    std::uint64_t dependencyBits;
    tPluginDescription* description;
};

std::uint64_t digest(std::string_view name) {
    const std::uint64_t hash = std::hash<std::string_view>{}(name);
    return std::uint64_t{1} << hash % 64 | std::uint64_t{1} << hash / 64 % 64;
}

/// What all names begin with: often the maker's prefix, which would make all keys the same.
std::string_view commonPrefix(const std::vector<tPluginDescription>& descriptions) {
    std::string_view prefix = descriptions.empty() ? std::string_view() : descriptions.front().name;
    for (const tPluginDescription& description : descriptions) {
        const std::string& name = description.name;
        const auto behind = std::mismatch(prefix.begin(), prefix.end(), name.begin(), name.end()).first;
        prefix = {prefix.begin(), behind};
    }
    return prefix;
}

/// The first eight bytes as a number that orders as they do; a shorter text counts as followed by zeros.
std::uint64_t toKey(std::string_view text) {
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < sizeof key; ++i) {
        key = key << 8U | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
    }
    return key;
}

tCandidate toCandidate(tPluginDescription& description, std::size_t prefixLength) {
    const std::string_view name = description.name;
    tCandidate candidate{toKey(name.substr(prefixLength)), digest(name), 0, &description};
    const auto& sorted = description.dependencies;
    for (auto dependency = sorted.rbegin(); dependency != sorted.rend() && *dependency >= name; ++dependency) {
        candidate.dependencyBits |= digest(*dependency);
    }
    return candidate;
}

bool names(const tPluginDescription& dependant, const tPluginDescription& other) {
    return std::binary_search(dependant.dependencies.begin(), dependant.dependencies.end(), other.name);
}

bool nameGoesBefore(const tCandidate& a, const tCandidate& b) {
    return a.nameKey == b.nameKey ? a.description->name < b.description->name : a.nameKey < b.nameKey;
}

/// The same answer as for the descriptions. The names decide, unless the one that they put in front names the other.
bool candidateGoesBefore(const tCandidate& a, const tCandidate& b) {
    const bool byName = nameGoesBefore(a, b);
    const tCandidate& front = byName ? a : b;
    const tCandidate& back = byName ? b : a;
    const bool mayDepend = (front.dependencyBits & back.nameBits) == back.nameBits;
    return mayDepend ? goesBefore(*a.description, *b.description) : byName;
}

}  // namespace

bool goesBefore(const tPluginDescription& a, const tPluginDescription& b) noexcept {
    const bool bNamesA = names(b, a);
    return bNamesA == names(a, b) ? a.name < b.name : bNamesA;
}

void sort(std::vector<tPluginDescription>& descriptions) {
    std::vector<tCandidate> candidates;
    candidates.reserve(descriptions.size());
    const std::size_t prefixLength = commonPrefix(descriptions).size();
    for (tPluginDescription& description : descriptions) {
        candidates.push_back(toCandidate(description, prefixLength));
    }
    nIntrosort::sort(std::span(candidates),
                     [](const tCandidate& a, const tCandidate& b) { return candidateGoesBefore(a, b); });

    std::vector<tPluginDescription> ordered;
    ordered.reserve(descriptions.size());
    for (const tCandidate& candidate : candidates) ordered.push_back(std::move(*candidate.description));
    descriptions.swap(ordered);
}

}  // namespace nPluginOrder
