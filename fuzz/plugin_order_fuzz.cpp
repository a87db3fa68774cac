// The sort with answers that the input chooses, and the plug-ins' first order with names and dependencies that it
// chooses: nothing is lost, up to 32 elements are inserted, and the order is that of the predicate.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include "source/introsort.h"
#include "source/nPluginOrder.h"

namespace {

void require(bool truth) {
    if (!truth) std::abort();
}

/// Insertion by the rule written plainly.
template <class Before>
std::vector<std::size_t> inserted(std::size_t count, Before before) {
    std::vector<std::size_t> result;
    for (std::size_t value = 0; value < count; ++value) {
        auto place = result.end();
        if (!result.empty() && before(value, result.front())) {
            place = result.begin();
        } else {
            while (place != result.begin() && before(value, *std::prev(place))) --place;
        }
        result.insert(place, value);
    }
    return result;
}

/// The bits of the input answer: bit a * count + b of it, over and over again, tells whether a goes before b.
void sortByBits(std::span<const std::uint8_t> bits, std::size_t count) {
    const auto before = [=](std::size_t a, std::size_t b) {
        const std::size_t bit = (a * count + b) % (bits.size() * 8);
        return (bits[bit / 8] >> bit % 8 & 1) != 0;
    };
    std::vector<std::size_t> values(count);
    std::iota(values.begin(), values.end(), 0);
    std::vector<std::size_t> sorted = values;
    nIntrosort::sort(std::span(sorted), before);
    if (count <= 32) require(sorted == inserted(count, before));
    std::sort(sorted.begin(), sorted.end());
    require(sorted == values);
}

/// A byte for each name, and one for how many follow that are its dependencies.
std::vector<tPluginDescription> toPlugins(std::span<const std::uint8_t> bytes) {
    std::vector<tPluginDescription> plugins;
    while (bytes.size() >= 2) {
        tPluginDescription& plugin = plugins.emplace_back();
        plugin.name.assign(1, static_cast<char>(bytes[0]));
        plugin.path = std::to_string(plugins.size());
        const std::size_t count = std::min<std::size_t>(bytes[1] % 8, bytes.size() - 2);
        for (const std::uint8_t byte : bytes.subspan(2, count)) {
            plugin.dependencies.emplace_back(1, static_cast<char>(byte));
        }
        std::sort(plugin.dependencies.begin(), plugin.dependencies.end());
        bytes = bytes.subspan(2 + count);
    }
    return plugins;
}

void orderPlugins(std::span<const std::uint8_t> bytes) {
    std::vector<tPluginDescription> plugins = toPlugins(bytes);
    const std::vector<tPluginDescription> copies = plugins;
    std::vector<const tPluginDescription*> expected;
    for (const tPluginDescription& plugin : copies) expected.push_back(&plugin);
    nIntrosort::sort(std::span(expected),
                     [](const auto* a, const auto* b) { return nPluginOrder::goesBefore(*a, *b); });

    nPluginOrder::sort(plugins);
    require(plugins.size() == expected.size());
    for (std::size_t i = 0; i < plugins.size(); ++i) require(plugins[i].path == expected[i]->path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::span<const std::uint8_t> bytes(data + 1, size - 1);
    sortByBits(bytes, data[0]);
    orderPlugins(bytes);
    return 0;
}
