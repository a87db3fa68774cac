// Group order: the first order of the plug-ins and the check of their dependencies, against a sort of the bare names.
#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/groups.h"
#include "bench/pairs.h"
#include "source/nPluginOrder.h"
#include "source/nPluginStart.h"

namespace {

using nBench::demand;
using tDescriptions = std::vector<tPluginDescription>;

constexpr std::size_t dependenciesEach = 10;

/// Descriptions in the order in which they lie in the folder, which is none. Each names ten plug-ins with names before
/// its own (the first ones: as many as there are), so that all of them can start and every check is made to its end.
tDescriptions makeDescriptions(std::int64_t count) {
    std::mt19937_64 random(1);
    std::vector<std::string> names;
    for (std::int64_t i = 0; i < count; ++i) names.push_back("Plugin" + std::to_string(count + i));
    tDescriptions descriptions(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        descriptions[i].name = names[i];
        descriptions[i].path = names[i] + ".dll";
        std::sample(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(i),
                    std::back_inserter(descriptions[i].dependencies), dependenciesEach, random);
    }
    std::shuffle(descriptions.begin(), descriptions.end(), random);
    return descriptions;
}

std::vector<std::string> namesOf(const tDescriptions& descriptions) {
    std::vector<std::string> names;
    for (const tPluginDescription& description : descriptions) names.push_back(description.name);
    return names;
}

/// As many as can start when each one does whose dependencies have started.
std::size_t countStartable(const tDescriptions& descriptions) {
    nPluginStart::tStarted started = nPluginStart::noneStarted(descriptions);
    std::size_t count = 0;
    for (const tPluginDescription& description : descriptions) {
        if (!nPluginStart::dependenciesStarted(description.dependencies, started)) continue;
        started.at(description.name) = true;
        ++count;
    }
    return count;
}

/// The same input for every run.
template <class tItems>
struct tInput {
    tItems original;
    tItems items;
    void reset() { items = original; }
};

using tOrderInput = tInput<tDescriptions>;
using tNameInput = tInput<std::vector<std::string>>;

void orderAndCheck(tOrderInput& input) {
    nPluginOrder::sort(input.items);
    demand(countStartable(input.items) == input.items.size(), "not all can start");
}

nBench::tPair againstSortingNames(std::int64_t count) {
    const auto ours = std::make_shared<tOrderInput>(tOrderInput{makeDescriptions(count), {}});
    const auto peer = std::make_shared<tNameInput>(tNameInput{namesOf(ours->original), {}});
    const auto sortNames = [peer] { std::sort(peer->items.begin(), peer->items.end()); };
    const auto reset = [ours, peer] {
        ours->reset();
        peer->reset();
    };
    reset();
    orderAndCheck(*ours);
    sortNames();
    demand(namesOf(ours->items) == peer->items, "the order is not that of the names");
    return {[ours] { orderAndCheck(*ours); }, sortNames, reset};
}

nBench::tPair againstATenth(std::int64_t count) {
    const auto many = std::make_shared<tOrderInput>(tOrderInput{makeDescriptions(count), {}});
    const auto few = std::make_shared<tOrderInput>(tOrderInput{makeDescriptions(count / 10), {}});
    // The large one last: neither is in the fast caches then.
    const auto reset = [many, few] {
        few->reset();
        many->reset();
    };
    return {[many] { orderAndCheck(*many); }, [few] { orderAndCheck(*few); }, reset};
}

}  // namespace

void addOrderRows() {
    const std::int64_t largest = nBench::quick() ? 1'000 : 100'000;
    for (std::int64_t size = 100; size <= largest; size *= 10) {
        nBench::addRow({"order/sort", "descriptions", size, [size] { return againstSortingNames(size); }});
    }
    const std::int64_t judged = nBench::quick() ? 1'000 : 10'000;
    nBench::addRow({"order/ten-times", "", judged, [judged] { return againstATenth(judged); }});
}
