#include "source/nPluginOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>

namespace {

using testing::ElementsAre;

tPluginDescription plugin(const std::string& name, std::vector<std::string> dependencies = {}) {
    tPluginDescription description;
    description.name = name;
    description.dependencies = std::move(dependencies);
    std::sort(description.dependencies.begin(), description.dependencies.end());
    return description;
}

std::vector<std::string> namesOf(const std::vector<tPluginDescription>& descriptions) {
    std::vector<std::string> names;
    for (const tPluginDescription& description : descriptions) names.push_back(description.name);
    return names;
}

std::vector<std::string> ordered(std::vector<tPluginDescription> descriptions) {
    nPluginOrder::sort(descriptions);
    return namesOf(descriptions);
}

/// Few names, with any of them as dependencies: rings, chains against the names and duplicates.
std::vector<tPluginDescription> randomPlugins(std::mt19937& random, std::size_t count) {
    const auto name = [&random, count] {
        const std::string letters(1 + random() % 2, 'a');
        return letters + std::to_string(random() % count);
    };
    std::vector<tPluginDescription> descriptions;
    for (std::size_t i = 0; i < count; ++i) {
        std::vector<std::string> dependencies;
        for (std::size_t left = random() % 4; left > 0; --left) dependencies.push_back(name());
        descriptions.push_back(plugin(name(), std::move(dependencies)));
        descriptions.back().path = std::to_string(i);
    }
    return descriptions;
}

struct tPair {
    tPluginDescription a;
    tPluginDescription b;
    bool aPrecedesB;
    bool bPrecedesA;
};

TEST(nPluginOrder, PrecedesByNameUnlessExactlyOneDependsOnTheOther) {
    const std::vector<tPair> pairs = {
        {plugin("a"), plugin("b"), true, false},
        {plugin("a", {"x"}), plugin("b", {"y"}), true, false},
        {plugin("a", {"b"}), plugin("b"), false, true},
        {plugin("a", {"A", "b"}), plugin("b"), false, true},
        {plugin("a", {"b", "c"}), plugin("b"), false, true},
        {plugin("a"), plugin("b", {"a"}), true, false},
        {plugin("a", {"b"}), plugin("b", {"a"}), true, false},
        // Dependencies are compared exactly.
        {plugin("a", {"B", "b ", "bb"}), plugin("b"), true, false},
        // Nothing precedes itself or its like; of two with one name, the one that depends on that name is the later.
        {plugin("a"), plugin("a"), false, false},
        {plugin("a", {"a"}), plugin("a", {"a"}), false, false},
        {plugin("a"), plugin("a", {"a"}), true, false},
        // Names are compared as unsigned bytes.
        {plugin("Zebra"), plugin("apple"), true, false},
        {plugin("z"), plugin("\xC3\xA4"), true, false},
        {plugin("a"), plugin("aa"), true, false},
        {plugin(""), plugin("a"), true, false},
        {plugin(std::string("a\0a", 3)), plugin(std::string("a\0b", 3)), true, false},
    };
    for (const tPair& pair : pairs) {
        EXPECT_EQ(nPluginOrder::precedes(pair.a, pair.b), pair.aPrecedesB) << pair.a.name << ' ' << pair.b.name;
        EXPECT_EQ(nPluginOrder::precedes(pair.b, pair.a), pair.bPrecedesA) << pair.b.name << ' ' << pair.a.name;
    }
}

TEST(nPluginOrder, FindsADependencyAmongMany) {
    std::vector<std::string> many;
    for (int i = 0; i < 1000; ++i) many.push_back("dependency " + std::to_string(i));
    const tPluginDescription dependant = plugin("a", many);
    for (const std::string& name : many) EXPECT_TRUE(nPluginOrder::precedes(plugin(name), dependant)) << name;
    EXPECT_FALSE(nPluginOrder::precedes(plugin("dependency 1000"), dependant));
}

TEST(nPluginOrder, SortsByNameAndDependency) {
    EXPECT_THAT(ordered({}), testing::IsEmpty());
    EXPECT_THAT(ordered({plugin("c"), plugin("a", {"b"}), plugin("B"), plugin("b")}), ElementsAre("B", "b", "a", "c"));
    EXPECT_THAT(ordered({plugin("b"), plugin("a"), plugin("c"), plugin("b")}), ElementsAre("a", "b", "b", "c"));
}

TEST(nPluginOrder, LooksAtNoIndirectDependency) {
    // a needs b, b needs c. c precedes b and b precedes a, yet a precedes c: insertion decides.
    EXPECT_THAT(ordered({plugin("a", {"b"}), plugin("b", {"c"}), plugin("c")}), ElementsAre("c", "b", "a"));
    EXPECT_THAT(ordered({plugin("b", {"c"}), plugin("a", {"b"}), plugin("c")}), ElementsAre("c", "b", "a"));
    EXPECT_THAT(ordered({plugin("a", {"b"}), plugin("c"), plugin("b", {"c"})}), ElementsAre("b", "a", "c"));
}

/// The rule in other words than the product's.
bool ruleSays(const tPluginDescription& a, const tPluginDescription& b) {
    const auto count = [](const tPluginDescription& dependant, const std::string& name) {
        return std::count(dependant.dependencies.begin(), dependant.dependencies.end(), name);
    };
    const bool bNeedsA = count(b, a.name) > 0;
    const bool aNeedsB = count(a, b.name) > 0;
    if (bNeedsA != aNeedsB) return bNeedsA;
    return std::lexicographical_compare(a.name.begin(), a.name.end(), b.name.begin(), b.name.end(),
                                        [](unsigned char x, unsigned char y) { return x < y; });
}

/// Insertion as prescribed for up to 32: to the front if it precedes the first, otherwise back while it precedes.
std::vector<std::string> pathsInserted(const std::vector<tPluginDescription>& plugins) {
    std::vector<const tPluginDescription*> list;
    for (const tPluginDescription& description : plugins) {
        auto place = list.end();
        if (!list.empty() && ruleSays(description, *list.front())) {
            place = list.begin();
        } else {
            while (place - list.begin() > 1 && ruleSays(description, **std::prev(place))) --place;
        }
        list.insert(place, &description);
    }
    std::vector<std::string> paths;
    for (const tPluginDescription* const description : list) paths.push_back(description->path);
    return paths;
}

std::vector<std::string> orderedPaths(std::vector<tPluginDescription> plugins) {
    nPluginOrder::sort(plugins);
    std::vector<std::string> paths;
    for (const tPluginDescription& description : plugins) paths.push_back(description.path);
    return paths;
}

TEST(nPluginOrder, InsertsUpTo32ByTheRule) {
    std::mt19937 random(1);
    for (std::size_t round = 0; round < 3000; ++round) {
        const std::vector<tPluginDescription> plugins = randomPlugins(random, round % 33);
        ASSERT_EQ(orderedPaths(plugins), pathsInserted(plugins)) << round;
    }
}

TEST(nPluginOrder, KeepsItsOrderOfManyInconsistentOnesFromVersionToVersion) {
    // A digest of the orders as first released.
    std::mt19937 random(2);
    std::uint32_t digest = 0;
    for (std::size_t count = 33; count < 500; ++count) {
        const std::vector<std::string> paths = orderedPaths(randomPlugins(random, count));
        std::vector<bool> seen(count);
        for (const std::string& path : paths) {
            digest = digest * 31 + static_cast<std::uint32_t>(std::stoul(path));
            seen[std::stoul(path)] = true;
        }
        ASSERT_EQ(std::count(seen.begin(), seen.end(), true), static_cast<std::ptrdiff_t>(count)) << "none is lost";
    }
    EXPECT_EQ(digest, 2623699182U);
}

TEST(nPluginOrder, ReturnsThePositionsInTheOrderInWhichItSorts) {
    EXPECT_THAT(nPluginOrder::positionsInOrder({}), testing::IsEmpty());
    EXPECT_THAT(nPluginOrder::positionsInOrder({plugin("c"), plugin("a", {"b"}), plugin("B"), plugin("b")}),
                ElementsAre(2, 3, 1, 0));
    std::mt19937 random(4);
    for (std::size_t count = 0; count < 200; ++count) {
        const std::vector<tPluginDescription> plugins = randomPlugins(random, count);
        std::vector<std::string> paths;
        for (const std::size_t position : nPluginOrder::positionsInOrder(plugins)) {
            paths.push_back(plugins.at(position).path);
        }
        ASSERT_EQ(paths, orderedPaths(plugins)) << count;
    }
}

TEST(nPluginOrder, MovesWholeDescriptionsWithoutCopyingTheirTexts) {
    tPluginDescription last = plugin("b", {"a", "c"});
    last.requiresMask = 6;
    last.path = "a path that is too long to be kept inside of a string object";
    last.initialize = "i";
    last.stop = "s";
    last.cleanup = "c";
    std::vector<tPluginDescription> plugins{last, plugin("a")};
    const char* const text = plugins[0].path.data();
    const std::string* const dependencies = plugins[0].dependencies.data();
    nPluginOrder::sort(plugins);
    EXPECT_EQ(plugins[1].path.data(), text);
    EXPECT_EQ(plugins[1].dependencies.data(), dependencies);
    EXPECT_EQ(plugins[1].name, "b");
    EXPECT_THAT(plugins[1].dependencies, ElementsAre("a", "c"));
    EXPECT_EQ(plugins[1].requiresMask, 6U);
    EXPECT_EQ(plugins[1].path, last.path);
    EXPECT_EQ(plugins[1].initialize + plugins[1].stop + plugins[1].cleanup, "isc");
}

TEST(nPluginOrder, OfTenThousandThatDependOnEarlierNamesIsTheirNameOrder) {
    std::mt19937 random(3);
    std::vector<tPluginDescription> plugins;
    std::vector<std::string> expected;
    for (std::size_t i = 0; i < 10000; ++i) {
        expected.push_back("Plugin" + std::to_string(10000 + i));
        std::vector<std::string> dependencies;
        for (std::size_t left = std::min<std::size_t>(i, 10); left > 0; --left)
            dependencies.push_back(expected[random() % i]);
        plugins.push_back(plugin(expected.back(), std::move(dependencies)));
    }
    for (std::size_t i = plugins.size(); i > 1; --i) std::swap(plugins[i - 1], plugins[random() % i]);
    EXPECT_EQ(ordered(std::move(plugins)), expected);
}

}  // namespace
