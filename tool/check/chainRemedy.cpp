#include "tool/check/chainRemedy.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "source/nPluginOrder.h"
#include "tool/check/wording.h"

namespace nCheck {
namespace {

using nWording::quoted;

constexpr std::size_t mostNames = 50;  // in a line that is advised
constexpr std::size_t mostFiles = 5;

/// Returns, by position, whether the plug-in comes before all plug-ins of a name on which it depends.
std::vector<bool> findTooEarly(const std::vector<tPluginDescription>& descriptions) {
    const std::vector<std::size_t> order = nPluginOrder::positionsInOrder(descriptions);
    std::unordered_map<std::string_view, std::size_t> firstRank;
    for (std::size_t rank = 0; rank < order.size(); ++rank) firstRank.emplace(descriptions[order[rank]].name, rank);
    std::vector<bool> tooEarly(descriptions.size());
    for (std::size_t rank = 0; rank < order.size(); ++rank) {
        const tPluginDescription& description = descriptions[order[rank]];
        tooEarly[order[rank]] =
            std::any_of(description.dependencies.begin(), description.dependencies.end(), [&](const std::string& name) {
                const auto found = firstRank.find(name);
                return found != firstRank.end() && found->second > rank;
            });
    }
    return tooEarly;
}

/// Returns whether the name can be written into "Dependencies".
bool canBeListed(const std::string& name) {
    std::vector<std::string> list;
    nPluginData::splitDependencies(name, list);
    return list.size() == 1 && list.front() == name && name.find('"') == std::string::npos;
}

/// Returns whether the description lacks one of the dependencies. Requires: they are sorted, and include its own.
bool lacks(const tPluginDescription& description, const std::vector<std::string>& dependencies) {
    const std::vector<std::string>& own = description.dependencies;
    return !std::includes(own.begin(), own.end(), dependencies.begin(), dependencies.end());
}

std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text.append(text.empty() ? "" : ", ").append(name);
    return text;
}

}  // namespace

tChainRemedies::tChainRemedies(const tCatalogue& catalogue, std::vector<tChange> corrections)
    : catalogue_(catalogue), corrections_(std::move(corrections)), tooEarly_(findTooEarly(catalogue.descriptions())) {}

/// Returns the names on which the plug-in depends, directly or indirectly, in the order of their bytes; none if they
/// are too many, or cannot be listed.
tChainRemedies::tNames tChainRemedies::allDependencies(std::size_t plugin) const {
    const std::string& ownName = catalogue_.descriptions()[plugin].name;
    std::unordered_set<std::string_view> known{ownName};
    tNames names;
    std::vector<std::size_t> unseen{plugin};
    while (!unseen.empty()) {
        const tPluginDescription& description = catalogue_.descriptions()[unseen.back()];
        unseen.pop_back();
        for (const std::string& name : description.dependencies) {
            if (!known.insert(name).second) continue;
            names.push_back(name);
            if (names.size() > mostNames || !canBeListed(name)) return {};
            const tNamed* const named = catalogue_.named(name);
            if (named != nullptr) unseen.insert(unseen.end(), named->plugins.begin(), named->plugins.end());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// Returns the plug-ins of the chain that starts with this one whose lists lack an indirect dependency, with the
/// complete lists; none if there are too many.
std::vector<tChainRemedies::tChange> tChainRemedies::wholeChain(std::size_t plugin) const {
    std::vector<std::size_t> chain{plugin};
    for (const std::string& name : allDependencies(plugin)) {
        const tNamed* const named = catalogue_.named(name);
        if (named != nullptr) chain.insert(chain.end(), named->plugins.begin(), named->plugins.end());
    }
    std::vector<tChange> changes;
    for (const std::size_t member : chain) {
        tNames all = allDependencies(member);
        if (lacks(catalogue_.descriptions()[member], all)) changes.push_back({member, std::move(all)});
        if (changes.size() > mostFiles) return {};
    }
    return changes;
}

/// Returns the plug-ins that depend on this one, directly or indirectly, and whose lists lack an indirect dependency,
/// with the complete lists; none if there are too many. Such a plug-in can keep this one in front of it.
std::vector<tChainRemedies::tChange> tChainRemedies::dependants(std::size_t plugin) const {
    const std::string& name = catalogue_.descriptions()[plugin].name;
    std::vector<tChange> changes;
    for (std::size_t other = 0; other < catalogue_.size(); ++other) {
        tNames all = allDependencies(other);
        if (!std::binary_search(all.begin(), all.end(), name)) continue;
        if (lacks(catalogue_.descriptions()[other], all)) changes.push_back({other, std::move(all)});
        if (changes.size() > mostFiles) return {};
    }
    return changes;
}

/// Returns whether the changed descriptions bring the plug-in into order, and none out of it.
bool tChainRemedies::helps(std::size_t plugin) {
    if (attemptsLeft_ == 0) return false;
    --attemptsLeft_;
    const std::vector<bool> tooEarly = findTooEarly(descriptions_);
    for (std::size_t i = 0; i < tooEarly.size(); ++i) {
        if (tooEarly[i] && (i == plugin || !tooEarly_[i])) return false;
    }
    return true;
}

bool tChainRemedies::tryDependencies(std::size_t plugin, const std::vector<tChange>& changes) {
    if (changes.empty()) return false;
    for (const tChange& change : changes) descriptions_[change.plugin].dependencies = change.dependencies;
    const bool helped = helps(plugin);
    for (const tChange& change : changes) {
        descriptions_[change.plugin].dependencies = catalogue_.descriptions()[change.plugin].dependencies;
    }
    return helped;
}

/// Tries another name, which the others that depend on the plug-in then use, too.
bool tChainRemedies::tryName(std::size_t plugin, const std::string& name) {
    const std::string& oldName = catalogue_.descriptions()[plugin].name;
    std::vector<std::size_t> changed{plugin};
    descriptions_[plugin].name = name;
    for (std::size_t i = 0; i < descriptions_.size(); ++i) {
        tNames& dependencies = descriptions_[i].dependencies;
        if (!std::binary_search(dependencies.begin(), dependencies.end(), oldName)) continue;
        std::replace(dependencies.begin(), dependencies.end(), oldName, name);
        std::sort(dependencies.begin(), dependencies.end());
        changed.push_back(i);
    }
    const bool helped = helps(plugin);
    for (const std::size_t i : changed) descriptions_[i] = catalogue_.descriptions()[i];
    return helped;
}

std::string tChainRemedies::describe(const std::vector<tChange>& changes) const {
    std::string text;
    for (const tChange& change : changes) {
        text += (text.empty() ? "Write " : " and ") + quoted("Dependencies=" + listed(change.dependencies)) + " in " +
                catalogue_.path(change.plugin);
    }
    return text + ": with all indirect dependencies, the order is right.";
}

/// Returns the remedy in dependants of the plug-in, in a single one if possible; empty if there is none.
std::string tChainRemedies::remedyInDependants(std::size_t plugin) {
    if (attemptsLeft_ == 0) return {};
    --attemptsLeft_;  // finding the dependants takes as long as an attempt
    const std::vector<tChange> changes = dependants(plugin);
    if (!tryDependencies(plugin, changes)) return {};
    for (const tChange& change : changes) {
        if (changes.size() > 1 && tryDependencies(plugin, {change})) return describe({change});
    }
    return describe(changes);
}

/// Returns the remedy that names indirect dependencies; empty if there is none.
std::string tChainRemedies::remedyInLists(std::size_t plugin) {
    const std::vector<tChange> own{{plugin, allDependencies(plugin)}};
    const bool lacksSome = lacks(catalogue_.descriptions()[plugin], own.front().dependencies);
    if (lacksSome && tryDependencies(plugin, own)) return describe(own);
    if (const std::vector<tChange> chain = wholeChain(plugin); tryDependencies(plugin, chain)) return describe(chain);
    return remedyInDependants(plugin);
}

std::string tChainRemedies::remedyFor(std::size_t plugin) {
    if (attemptsLeft_ == 0) return "Correct the other plug-ins that come too early first, then check again.";
    if (descriptions_.empty()) descriptions_ = catalogue_.descriptions();
    if (tryDependencies(plugin, corrections_)) {
        return "Correct the names of dependencies that have findings of their own: this brings it into order, too.";
    }
    if (std::string remedy = remedyInLists(plugin); !remedy.empty()) return remedy;

    const tNames all = allDependencies(plugin);
    const std::string& oldName = catalogue_.descriptions()[plugin].name;
    const std::string newName = all.empty() ? "" : all.back() + "-" + oldName;
    const bool isUnique = catalogue_.named(oldName)->plugins.size() == 1 && catalogue_.named(newName) == nullptr;
    if (!all.empty() && isUnique && canBeListed(newName) && tryName(plugin, newName)) {
        return "Rename the plug-in, here and where others depend on it, so that its name follows " +
               quoted(all.back()) + " in the order of bytes, for example to " + quoted(newName) + ".";
    }
    return "Give the plug-ins names whose order is the order in which they must start, for example by a number in "
           "front: naming dependencies is not enough here.";
}

}  // namespace nCheck
