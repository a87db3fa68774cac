#include "source/tStartedNames.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <set>
#include <string_view>
#include <unordered_map>

namespace {

TEST(StartedNames, AnEmptyListAlwaysPasses) {
    EXPECT_TRUE(tStartedNames(0).haveStarted({}));
    EXPECT_TRUE(tStartedNames(5).haveStarted({}));
}

TEST(StartedNames, NothingHasStartedAtFirst) {
    EXPECT_FALSE(tStartedNames(0).haveStarted({"a"}));
    EXPECT_FALSE(tStartedNames(5).haveStarted({""}));
}

TEST(StartedNames, EachDependencyMustHaveStarted) {
    tStartedNames started(3);
    started.add("a");
    started.add("c");
    EXPECT_TRUE(started.haveStarted({"a"}));
    EXPECT_TRUE(started.haveStarted({"a", "c"}));
    EXPECT_FALSE(started.haveStarted({"a", "b", "c"}));
    EXPECT_FALSE(started.haveStarted({"a", "c", "d"}));
    started.add("b");
    EXPECT_TRUE(started.haveStarted({"a", "b", "c"}));
}

TEST(StartedNames, ADependencyNamedTwiceNeverPasses) {
    tStartedNames started(2);
    started.add("a");
    started.add("a");
    EXPECT_TRUE(started.haveStarted({"a"}));
    EXPECT_FALSE(started.haveStarted({"a", "a"}));
}

TEST(StartedNames, AListOutOfOrderNeverPasses) {
    tStartedNames started(2);
    started.add("a");
    started.add("b");
    EXPECT_FALSE(started.haveStarted({"b", "a"}));
}

TEST(StartedNames, NamesAreComparedByTheirBytes) {
    tStartedNames started(4);
    started.add("Name");
    started.add(std::string("zero\0one", 8));
    EXPECT_FALSE(started.haveStarted({"name"}));
    EXPECT_FALSE(started.haveStarted({"Name "}));
    EXPECT_FALSE(started.haveStarted({"zero"}));
    EXPECT_TRUE(started.haveStarted({std::string("zero\0one", 8)}));
}

TEST(StartedNames, AreNotTakenForOthersOfNearlyTheSameHash) {
    // Room for one name is four slots, told by two bits of the hash; a slot keeps the upper half of it.
    std::unordered_map<std::size_t, std::string> names;
    for (int number = 0;; ++number) {
        const std::string name = std::to_string(number);
        const std::size_t hash = std::hash<std::string_view>{}(name);
        const auto [other, isNew] = names.try_emplace(hash & 0xFFFFFFFF00000003, name);
        if (isNew) continue;
        tStartedNames started(1);
        started.add(other->second);
        EXPECT_TRUE(started.haveStarted({other->second}));
        EXPECT_FALSE(started.haveStarted({name})) << other->second;
        return;
    }
}

TEST(StartedNames, AnEmptyNameIsANameLikeAnyOther) {
    const std::string empty;
    tStartedNames started(1);
    EXPECT_FALSE(started.haveStarted({empty}));
    started.add(empty);
    EXPECT_TRUE(started.haveStarted({empty}));
}

TEST(StartedNames, AreThoseOfASetHoweverManyThereAre) {
    std::mt19937 random(1);
    std::vector<std::string> names;
    for (int i = 0; i < 3000; ++i) names.push_back("Plugin" + std::to_string(i));
    for (const std::size_t room : {1U, 2U, 3U, 31U, 32U, 33U, 1000U, 3000U}) {
        tStartedNames started(room);
        std::set<std::string> expected;
        for (std::size_t i = 0; i < room; ++i) {
            const std::string& name = names[random() % names.size()];
            started.add(name);
            expected.insert(name);
        }
        for (const std::string& name : names) ASSERT_EQ(started.haveStarted({name}), expected.contains(name)) << name;
    }
}

}  // namespace
