// Runs the sort with answers from the input, consistent or not, and the plug-ins' first order with names and
// dependencies from the input: no element is lost, no memory outside the range is accessed, the same input produces the
// same order, the time is not quadratic, and up to 32 elements are sorted by insertion.
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include "check.h"
#include "source/introsort.h"
#include "source/nPluginOrder.h"

namespace {

using tElements = std::vector<std::size_t>;

/// The answers are the bits of the input, repeated as often as needed.
class tAnswers {
public:
    enum class tKind { toPair, toCall };
    struct tThrown {};

    tAnswers(std::span<const std::uint8_t> bits, std::size_t count, tKind kind, std::size_t lastCall)
        : bits_(bits), count_(count), kind_(kind), lastCall_(lastCall) {}

    /// Answers either consistently for each pair of elements, or differently at each call.
    bool operator()(std::size_t a, std::size_t b) {
        check(a < count_ && b < count_, "the compared elements");
        if (calls_ == lastCall_) throw tThrown();
        const std::size_t bit = (kind_ == tKind::toPair ? a * count_ + b : calls_) % (bits_.size() * 8);
        ++calls_;
        return (bits_[bit / 8] >> bit % 8 & 1) != 0;
    }

    [[nodiscard]] std::size_t calls() const { return calls_; }

private:
    std::span<const std::uint8_t> bits_;
    std::size_t count_;
    tKind kind_;
    std::size_t lastCall_;
    std::size_t calls_ = 0;
};

tElements sorted(std::size_t count, tAnswers& answers) {
    tElements elements(count);
    std::iota(elements.begin(), elements.end(), 0);
    try {
        nIntrosort::sort(std::span(elements), [&](std::size_t a, std::size_t b) { return answers(a, b); });
    } catch (const tAnswers::tThrown&) {
    }
    return elements;
}

/// Plain insertion sort: an element moves to the front if it precedes the first, otherwise back while it precedes its
/// neighbour.
template <class Precedes>
tElements inserted(std::size_t count, Precedes precedes) {
    tElements result;
    for (std::size_t value = 0; value < count; ++value) {
        auto place = result.end();
        if (!result.empty() && precedes(value, result.front())) {
            place = result.begin();
        } else {
            while (std::distance(result.begin(), place) > 1 && precedes(value, *std::prev(place))) --place;
        }
        result.insert(place, value);
    }
    return result;
}

void checkPermutation(tElements elements) {
    std::sort(elements.begin(), elements.end());
    for (std::size_t i = 0; i < elements.size(); ++i) check(elements[i] == i, "a permutation");
}

void sortByAnswers(const tAnswers& answers, std::size_t count) {
    tAnswers first = answers;
    const tElements elements = sorted(count, first);
    checkPermutation(elements);
    check(first.calls() <= count * (32 + 6 * static_cast<std::size_t>(std::bit_width(count))), "number of comparisons");
    tAnswers second = answers;
    check(sorted(count, second) == elements, "the same order again");
}

/// One byte per name, and one for the number of dependencies that follow.
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

bool dependsOn(const tPluginDescription& dependant, const tPluginDescription& other) {
    const std::vector<std::string>& list = dependant.dependencies;
    return std::find(list.begin(), list.end(), other.name) != list.end();
}

/// A plain implementation of the predicate's rule, with unsigned bytes.
bool precedes(const tPluginDescription& a, const tPluginDescription& b) {
    const bool first = dependsOn(b, a);
    const bool second = dependsOn(a, b);
    return first != second ? first : static_cast<unsigned char>(a.name[0]) < static_cast<unsigned char>(b.name[0]);
}

void orderPlugins(std::span<const std::uint8_t> bytes) {
    std::vector<tPluginDescription> plugins = toPlugins(bytes);
    const std::vector<tPluginDescription> copies = plugins;
    for (std::size_t i = 0; i < copies.size() && i < 64; ++i) {
        for (const tPluginDescription& other : copies) {
            check(nPluginOrder::precedes(copies[i], other) == precedes(copies[i], other), "precedes");
        }
    }

    nPluginOrder::sort(plugins);
    tElements order;
    for (const tPluginDescription& plugin : plugins) {
        order.push_back(std::stoul(plugin.path) - 1);
        const tPluginDescription& copy = copies.at(order.back());
        check(plugin.name == copy.name && plugin.dependencies == copy.dependencies, "a whole description");
    }
    check(order.size() == copies.size(), "number of plug-ins");
    checkPermutation(order);
    if (copies.size() > 32) return;
    check(
        order == inserted(copies.size(), [&](std::size_t a, std::size_t b) { return precedes(copies[a], copies[b]); }),
        "order");
}

}  // namespace

/// The input: the number of elements; which call of the predicate throws, if any; then the answers, and the plug-ins.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    const std::size_t count = data[0] < 224 ? data[0] % 64 : (data[0] - 192) * 4U;
    const std::span<const std::uint8_t> bytes(data + 2, size - 2);
    if (data[1] % 2 == 0) {
        orderPlugins(bytes);
        return 0;
    }
    constexpr std::size_t never = SIZE_MAX;
    const std::size_t lastCall = data[1] < 128 ? never : std::size_t{data[1]} * count / 32;
    for (const auto kind : {tAnswers::tKind::toPair, tAnswers::tKind::toCall}) {
        const tAnswers answers(bytes, count, kind, lastCall);
        sortByAnswers(answers, count);
        if (count > 32 || lastCall != never) continue;
        tAnswers again = answers;
        check(sorted(count, again) == inserted(count, answers), "insertion");
    }
    return 0;
}
