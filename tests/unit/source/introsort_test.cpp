#include "source/introsort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <numeric>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

std::vector<int> upTo(std::size_t count) {
    std::vector<int> values(count);
    std::iota(values.begin(), values.end(), 0);
    return values;
}

std::vector<int> shuffled(std::size_t count, std::uint32_t seed) {
    std::vector<int> values = upTo(count);
    // Not std::shuffle, whose result differs between libraries.
    std::mt19937 random(seed);
    for (std::size_t i = count; i > 1; --i) std::swap(values[i - 1], values[random() % i]);
    return values;
}

template <class Before>
std::vector<int> sorted(std::vector<int> values, Before before) {
    nIntrosort::sort(std::span(values), before);
    return values;
}

bool isPermutation(std::vector<int> values) {
    const std::vector<int> all = upTo(values.size());
    std::sort(values.begin(), values.end());
    return values == all;
}

/// Insertion sort written plainly, by removing and inserting values.
template <class Before>
std::vector<int> inserted(const std::vector<int>& values, Before before) {
    std::vector<int> result;
    for (const int value : values) {
        auto place = result.end();
        if (!result.empty() && before(value, result.front())) {
            place = result.begin();
        } else {
            while (place != result.begin() && before(value, *(place - 1))) --place;
        }
        result.insert(place, value);
    }
    return result;
}

/// A random answer for each pair of values. It is the same at each call, but otherwise the answers are inconsistent.
class tRandomAnswers {
public:
    explicit tRandomAnswers(std::uint32_t seed) : seed_(seed) {}
    bool operator()(int a, int b) const {
        std::uint64_t hash = seed_ + 0x9E3779B97F4A7C15U * static_cast<std::uint32_t>(a * 1000 + b + 1);
        hash = (hash ^ hash >> 30) * 0xBF58476D1CE4E5B9U;
        return (hash ^ hash >> 27) % 3 == 0;
    }

private:
    std::uint64_t seed_;
};

TEST(nIntrosort, ComparesAnElementWithTheFirstOneOnce) {
    std::vector<int> numbers{1, 2};
    int comparisons = 0;
    nIntrosort::sort(std::span(numbers), [&](int a, int b) {
        ++comparisons;
        return a < b;
    });
    EXPECT_EQ(comparisons, 1);
}

TEST(nIntrosort, SortsEveryLengthUpTo100) {
    for (std::size_t count = 0; count <= 100; ++count) {
        for (std::uint32_t seed = 0; seed < 20; ++seed) {
            ASSERT_EQ(sorted(shuffled(count, seed), std::less<>()), upTo(count)) << count << ' ' << seed;
        }
    }
}

TEST(nIntrosort, SortsSortedReversedAndEqualValues) {
    for (const std::size_t count : {2U, 32U, 33U, 1000U, 10000U}) {
        const std::vector<int> ascending = upTo(count);
        EXPECT_EQ(sorted(ascending, std::less<>()), ascending);
        EXPECT_EQ(sorted({ascending.rbegin(), ascending.rend()}, std::less<>()), ascending);
        EXPECT_EQ(sorted(std::vector(count, 7), std::less<>()), std::vector(count, 7));
    }
}

TEST(nIntrosort, SortsManyRepeatedValues) {
    std::vector<int> values = shuffled(5000, 1);
    for (int& value : values) value %= 7;
    std::vector<int> expected = values;
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(sorted(values, std::less<>()), expected);
}

TEST(nIntrosort, SortsUpTo32ValuesByInsertionForAnyPredicate) {
    for (std::size_t count = 0; count <= nIntrosort::insertionLimit; ++count) {
        for (std::uint32_t seed = 0; seed < 300; ++seed) {
            const tRandomAnswers before(seed);
            const std::vector<int> values = shuffled(count, seed);
            ASSERT_EQ(sorted(values, before), inserted(values, before)) << count << ' ' << seed;
        }
    }
}

TEST(nIntrosort, ComparesEachElementWithTheFirstOneBeforeItsNeighbours) {
    // 2 precedes 0, the first, and nothing else: it moves to the front without being compared with 1.
    const auto before = [](int a, int b) { return a == 2 && b == 0; };
    EXPECT_EQ(sorted({0, 1, 2}, before), (std::vector{2, 0, 1}));
    // 2 precedes 1, its neighbour, but not 0.
    const auto beforeNeighbour = [](int a, int b) { return a == 2 && b == 1; };
    EXPECT_EQ(sorted({0, 1, 2}, beforeNeighbour), (std::vector{0, 2, 1}));
    // 3 precedes 1 but does not reach it, because it does not precede 2.
    const auto beforeOneBehind = [](int a, int b) { return a == 3 && b == 1; };
    EXPECT_EQ(sorted({0, 1, 2, 3}, beforeOneBehind), (std::vector{0, 1, 2, 3}));
}

TEST(nIntrosort, DoesNotSortMoreThan32ValuesByInsertion) {
    const auto always = [](int, int) { return true; };
    EXPECT_EQ(sorted(upTo(32), always), inserted(upTo(32), always));
    EXPECT_NE(sorted(upTo(33), always), inserted(upTo(33), always));
}

TEST(nIntrosort, KeepsEveryValueForAnyPredicate) {
    for (std::uint32_t seed = 0; seed < 20000; ++seed) {
        ASSERT_TRUE(isPermutation(sorted(upTo(seed % 150), tRandomAnswers(seed)))) << seed;
    }
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        ASSERT_TRUE(isPermutation(sorted(upTo(5000), tRandomAnswers(seed)))) << seed;
    }
}

TEST(nIntrosort, KeepsEveryValueIfThePredicateContradictsItself) {
    for (std::uint32_t seed = 0; seed < 5000; ++seed) {
        std::mt19937 random(seed);
        ASSERT_TRUE(isPermutation(sorted(upTo(seed % 150), [&random](int, int) { return random() % 2 == 0; }))) << seed;
    }
}

TEST(nIntrosort, KeepsEveryValueIfThePredicateIsConstant) {
    for (const std::size_t count : {0U, 1U, 2U, 32U, 33U, 100U, 5000U}) {
        EXPECT_TRUE(isPermutation(sorted(upTo(count), [](int, int) { return true; })));
        EXPECT_EQ(sorted(upTo(count), [](int, int) { return false; }).size(), count);
        EXPECT_TRUE(isPermutation(sorted(upTo(count), [](int, int) { return false; })));
    }
}

TEST(nIntrosort, KeepsEveryValueIfThePredicateThrows) {
    for (int answers = 0; answers < 2000; answers += 7) {
        std::vector<int> values = shuffled(200, 1);
        int left = answers;
        const auto before = [&left](int a, int b) { return left-- > 0 ? a < b : throw std::runtime_error("no more"); };
        try {
            nIntrosort::sort(std::span(values), before);
        } catch (const std::runtime_error&) {
        }
        ASSERT_TRUE(isPermutation(values)) << answers;
    }
}

TEST(nIntrosort, ProducesTheSameOrderOnEveryToolchain) {
    // A stored digest of the orders that some inconsistent predicates produce.
    std::uint32_t digest = 0;
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        for (const int value : sorted(shuffled(seed, seed), tRandomAnswers(seed))) {
            digest = digest * 31 + static_cast<std::uint32_t>(value);
        }
    }
    EXPECT_EQ(digest, 3765410294U);
}

/// An adversary that makes any quicksort quadratic: a value is fixed only when it is compared, and then as high as
/// still possible (M. D. McIlroy, "A Killer Adversary for Quicksort").
class tAdversary {
public:
    explicit tAdversary(std::size_t count) : values_(count, gas) {}

    bool operator()(int a, int b) {
        ++questions;
        auto& first = values_[static_cast<std::size_t>(a)];
        auto& second = values_[static_cast<std::size_t>(b)];
        if (first == gas && second == gas) (a == candidate_ ? first : second) = solid_++;
        if (first == gas) candidate_ = a;
        if (second == gas) candidate_ = b;
        return first < second;
    }

    std::size_t questions = 0;

private:
    static constexpr int gas = 1 << 30;
    std::vector<int> values_;
    int solid_ = 0;
    int candidate_ = 0;
};

TEST(nIntrosort, NeverMakesAQuadraticNumberOfComparisons) {
    for (const std::size_t count : {1000U, 10000U, 100000U}) {
        tAdversary adversary(count);
        std::vector<int> values = upTo(count);
        nIntrosort::sort(std::span(values), [&adversary](int a, int b) { return adversary(a, b); });
        const double linearithmic = static_cast<double>(count) * std::log2(count);
        EXPECT_LT(static_cast<double>(adversary.questions), 5 * linearithmic) << count;
        EXPECT_TRUE(isPermutation(values));
    }
}

/// The number of comparisons that sifting this root down makes if the answer is always yes: two wherever there are two
/// children.
std::size_t siftQuestions(std::size_t root, std::size_t size) {
    std::size_t questions = 0;
    while (2 * root + 1 < size) {
        const bool hasTwo = 2 * root + 2 < size;
        questions += hasTwo ? 2 : 1;
        root = hasTwo ? 2 * root + 2 : 2 * root + 1;
    }
    return questions;
}

TEST(nIntrosort, SwitchesToHeapSortAfter15NestedPartitionsOf1000Values) {
    // Each partition makes three comparisons for its median and one for each other value, and its pivot ends up last.
    std::size_t expected = 0;
    for (std::size_t size = 1000; size > 985; --size) expected += 3 + size - 1;
    for (std::size_t root = 0; root < 985 / 2; ++root) expected += siftQuestions(root, 985);
    for (std::size_t size = 984; size > 0; --size) expected += siftQuestions(0, size);
    std::size_t questions = 0;
    sorted(upTo(1000), [&questions](int, int) { return ++questions, true; });
    EXPECT_EQ(questions, expected);
}

TEST(nIntrosort, MakesFewComparisonsForShuffledSortedReversedAndRepeatedValues) {
    const std::size_t count = 10000;
    std::vector<int> repeated = shuffled(count, 2);
    for (int& value : repeated) value %= 3;
    std::vector<int> reversed = upTo(count);
    std::reverse(reversed.begin(), reversed.end());
    for (const auto& values : {shuffled(count, 1), upTo(count), reversed, repeated, std::vector<int>(count, 7)}) {
        std::size_t questions = 0;
        sorted(values, [&questions](int a, int b) { return ++questions, a < b; });
        EXPECT_LT(static_cast<double>(questions), 1.5 * count * std::log2(count));
    }
}

TEST(nIntrosort, HeapSortSortsAndKeepsEveryValueForAnyPredicate) {
    for (std::uint32_t seed = 0; seed < 500; ++seed) {
        std::vector<int> values = shuffled(seed % 150, seed);
        auto less = std::less<>();
        nIntrosort::heapSort(std::span(values), less);
        ASSERT_EQ(values, upTo(values.size()));
        tRandomAnswers before(seed);
        nIntrosort::heapSort(std::span(values), before);
        ASSERT_TRUE(isPermutation(values));
    }
}

TEST(nIntrosort, PartitionLeavesNothingOnTheWrongSideOfThePivot) {
    for (std::uint32_t seed = 0; seed < 500; ++seed) {
        std::vector<int> values = shuffled(33 + seed % 100, seed);
        for (int& value : values) value %= 20;
        auto less = std::less<>();
        const auto pivot = static_cast<std::ptrdiff_t>(nIntrosort::partition(std::span(values), less));
        const int at = values[static_cast<std::size_t>(pivot)];
        ASSERT_TRUE(std::all_of(values.begin(), values.begin() + pivot, [at](int value) { return value <= at; }));
        ASSERT_TRUE(std::all_of(values.begin() + pivot, values.end(), [at](int value) { return value >= at; }));
    }
}

}  // namespace
