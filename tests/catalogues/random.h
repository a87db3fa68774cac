#pragma once

#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <random>
#include <utility>
#include <vector>

namespace catalogues {

/// A source of random choices. A seed leads to the same choices everywhere, unlike with the standard distributions.
class tRandom {
public:
    explicit tRandom(std::uint64_t seed) : engine_(seed) {}

    /// Requires: the count is not 0.
    [[nodiscard]] std::size_t below(std::size_t count) { return static_cast<std::size_t>(engine_() % count); }

    /// Returns true in so many of a hundred cases.
    [[nodiscard]] bool chance(int percent) { return static_cast<int>(below(100)) < percent; }

    /// Requires: the list is not empty.
    template <class List>
    [[nodiscard]] const auto& pick(const List& list) {
        return *std::next(std::begin(list), static_cast<std::ptrdiff_t>(below(std::size(list))));
    }
    template <class Item>
    [[nodiscard]] Item pick(std::initializer_list<Item> list) {
        return *(list.begin() + below(list.size()));
    }

    template <class Item>
    void shuffle(std::vector<Item>& items) {
        for (std::size_t i = items.size(); i > 1; --i) std::swap(items[i - 1], items[below(i)]);
    }

private:
    std::mt19937_64 engine_;
};

}  // namespace catalogues
