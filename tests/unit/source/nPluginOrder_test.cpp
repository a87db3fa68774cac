#include "source/nPluginOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <span>

#include "source/introsort.h"

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

/// Names from a to t or so, with any of them as dependencies: rings, chains against the names and doublets.
std::vector<tPluginDescription> randomPlugins(std::mt19937& random, std::size_t count) {
    const auto name = [&random, count] {
        return std::string(1 + random() % 2, 'a') + std::to_string(random() % count);
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

TEST(FirstOrder, PutsADependencyFirstWhateverTheNames) {
    EXPECT_TRUE(nPluginOrder::goesBefore(plugin("b"), plugin("a", {"b"})));
    EXPECT_FALSE(nPluginOrder::goesBefore(plugin("a", {"b"}), plugin("b")));
    EXPECT_TRUE(nPluginOrder::goesBefore(plugin("a"), plugin("b", {"a"})));
    EXPECT_FALSE(nPluginOrder::goesBefore(plugin("b", {"a"}), plugin("a")));
}

TEST(FirstOrder, GoesByNameWhereNeitherNamesTheOther) {
    EXPECT_TRUE(nPluginOrder::goesBefore(plugin("a", {"x"}), plugin("b", {"y"})));
    EXPECT_FALSE(nPluginOrder::goesBefore(plugin("b", {"x"}), plugin("a", {"y"})));
}

TEST(FirstOrder, GoesByNameWhereBothNameEachOther) {
    EXPECT_TRUE(nPluginOrder::goesBefore(plugin("a", {"b"}), plugin("b", {"a"})));
    EXPECT_FALSE(nPluginOrder::goesBefore(plugin("b", {"a"}), plugin("a", {"b"})));
}

TEST(FirstOrder, PutsNothingBeforeItself) {
    EXPECT_FALSE(nPluginOrder::goesBefore(plugin("a"), plugin("a")));
    EXPECT_FALSE(nPluginOrder::goesBefore(plugin("a", {"a"}), plugin("a", {"a"})));
}

TEST(FirstOrder, TakesOneOfTwoOfTheSameNameFirstWhenTheOtherNamesIt) {
    EXPECT_TRUE(nPluginOrder::goesBefore(plugin("a"), plugin("a", {"a"})));
    EXPECT_FALSE(nPluginOrder::goesBefore(plugin("a", {"a"}), plugin("a")));
}

TEST(FirstOrder, ComparesDependenciesExactly) {
    EXPECT_TRUE(nPluginOrder::goesBefore(plugin("a", {"B", "b ", "bb"}), plugin("b")));
}

TEST(FirstOrder, ComparesNamesByTheirBytes) {
    EXPECT_TRUE(nPluginOrder::goesBefore(plugin("Zebra"), plugin("apple")));
    EXPECT_TRUE(nPluginOrder::goesBefore(plugin("z"), plugin("\xC3\xA4")));
    EXPECT_TRUE(nPluginOrder::goesBefore(plugin("a"), plugin("aa")));
    EXPECT_TRUE(nPluginOrder::goesBefore(plugin(""), plugin("a")));
}

TEST(FirstOrder, FindsADependencyAmongMany) {
    std::vector<std::string> many;
    for (int i = 0; i < 1000; ++i) many.push_back("dependency " + std::to_string(i));
    const tPluginDescription dependant = plugin("a", many);
    for (const std::string& name : many) EXPECT_TRUE(nPluginOrder::goesBefore(plugin(name), dependant)) << name;
    EXPECT_FALSE(nPluginOrder::goesBefore(plugin("dependency 1000"), dependant));
}

TEST(FirstOrder, OfNothingIsNothing) { EXPECT_THAT(ordered({}), testing::IsEmpty()); }

TEST(FirstOrder, SortsByNameAndDependency) {
    EXPECT_THAT(ordered({plugin("c"), plugin("a", {"b"}), plugin("B"), plugin("b")}), ElementsAre("B", "b", "a", "c"));
}

TEST(FirstOrder, PutsTwoOfTheSameNameNextToEachOther) {
    EXPECT_THAT(ordered({plugin("b"), plugin("a"), plugin("c"), plugin("b")}), ElementsAre("a", "b", "b", "c"));
}

TEST(FirstOrder, LooksAtNoIndirectDependency) {
    // a needs b, b needs c. c goes before b and b before a, yet c goes behind a: what insertion makes of it stands.
    EXPECT_THAT(ordered({plugin("a", {"b"}), plugin("b", {"c"}), plugin("c")}), ElementsAre("c", "b", "a"));
    EXPECT_THAT(ordered({plugin("b", {"c"}), plugin("a", {"b"}), plugin("c")}), ElementsAre("c", "b", "a"));
    EXPECT_THAT(ordered({plugin("a", {"b"}), plugin("c"), plugin("b", {"c"})}), ElementsAre("b", "a", "c"));
}

/// The paths of the descriptions as the predicate orders them when the sort asks it itself.
std::vector<std::string> pathsByPredicate(const std::vector<tPluginDescription>& plugins) {
    std::vector<const tPluginDescription*> expected;
    for (const tPluginDescription& description : plugins) expected.push_back(&description);
    nIntrosort::sort(std::span(expected),
                     [](const auto* a, const auto* b) { return nPluginOrder::goesBefore(*a, *b); });
    std::vector<std::string> paths;
    for (const tPluginDescription* const description : expected) paths.push_back(description->path);
    return paths;
}

std::vector<std::string> orderedPaths(std::vector<tPluginDescription> plugins) {
    nPluginOrder::sort(plugins);
    std::vector<std::string> paths;
    for (const tPluginDescription& description : plugins) paths.push_back(description.path);
    return paths;
}

TEST(FirstOrder, IsThatOfThePredicateWhateverTheDigestsOfTheNames) {
    std::mt19937 random(1);
    for (std::size_t round = 0; round < 2000; ++round) {
        const std::vector<tPluginDescription> plugins = randomPlugins(random, round % 80);
        ASSERT_EQ(orderedPaths(plugins), pathsByPredicate(plugins)) << round;
    }
}

TEST(FirstOrder, IsThatOfThePredicateWhateverTheNamesBeginAndEndWith) {
    const std::string zero(1, '\0');
    std::mt19937 random(4);
    for (const std::string& front : {std::string(), std::string("Maker's plug-in "), zero, std::string("\xC3\xA4")}) {
        for (const std::string& back : {std::string(), zero, zero + zero, std::string("\xFF of eight bytes")}) {
            // Some names get what goes behind, so that names differ only there.
            const auto dress = [&](const std::string& name) { return front + name + (name[0] == 'a' ? back : ""); };
            for (std::size_t round = 0; round < 40; ++round) {
                std::vector<tPluginDescription> plugins = randomPlugins(random, 60);
                for (tPluginDescription& description : plugins) {
                    description.name = dress(description.name);
                    for (std::string& name : description.dependencies) name = dress(name);
                    std::sort(description.dependencies.begin(), description.dependencies.end());
                }
                ASSERT_EQ(orderedPaths(plugins), pathsByPredicate(plugins)) << front << ' ' << back << ' ' << round;
            }
        }
    }
}

TEST(FirstOrder, TellsNamesApartThatDifferBehindEightBytes) {
    EXPECT_THAT(ordered({plugin("x12345678b"), plugin("y"), plugin("x12345678"), plugin("x12345678a")}),
                ElementsAre("x12345678", "x12345678a", "x12345678b", "y"));
}

TEST(FirstOrder, HeedsADependencyOnOneOfTheSameName) {
    // The first one waits for a plug-in of its own name, which the other one is; the other one waits for nothing.
    std::vector<tPluginDescription> plugins{plugin("a", {"a"}), plugin("a")};
    plugins[0].path = "dependant";
    EXPECT_THAT(orderedPaths(plugins), ElementsAre("", "dependant"));
}

TEST(FirstOrder, KeepsEveryDescriptionWhateverItNames) {
    std::mt19937 random(2);
    for (std::size_t round = 0; round < 500; ++round) {
        std::vector<tPluginDescription> plugins = randomPlugins(random, round);
        nPluginOrder::sort(plugins);
        std::vector<bool> seen(round);
        for (const tPluginDescription& description : plugins) seen[std::stoul(description.path)] = true;
        ASSERT_EQ(std::count(seen.begin(), seen.end(), true), static_cast<std::ptrdiff_t>(round));
    }
}

TEST(FirstOrder, MovesDescriptionsWithoutCopyingTheirTexts) {
    std::vector<tPluginDescription> plugins{plugin("b", {"a"}), plugin("a")};
    plugins[0].path = "a path that is too long to be kept inside of a string object";
    const char* const text = plugins[0].path.data();
    const std::string* const dependencies = plugins[0].dependencies.data();
    nPluginOrder::sort(plugins);
    EXPECT_EQ(plugins[1].path.data(), text);
    EXPECT_EQ(plugins[1].dependencies.data(), dependencies);
}

TEST(FirstOrder, CarriesEveryFieldAlong) {
    tPluginDescription last = plugin("b", {"a", "c"});
    last.requiresMask = 6;
    last.path = "b.dll";
    last.initialize = "i";
    last.stop = "s";
    last.cleanup = "c";
    std::vector<tPluginDescription> plugins{last, plugin("a")};
    nPluginOrder::sort(plugins);
    EXPECT_EQ(plugins[1].name, "b");
    EXPECT_THAT(plugins[1].dependencies, ElementsAre("a", "c"));
    EXPECT_EQ(plugins[1].requiresMask, 6U);
    EXPECT_EQ(plugins[1].path + plugins[1].initialize + plugins[1].stop + plugins[1].cleanup, "b.dllisc");
}

TEST(FirstOrder, OfTenThousandThatDependOnEarlierNamesIsTheirNameOrder) {
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
