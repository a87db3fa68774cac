#include "source/nPluginStart.h"

#include <gtest/gtest.h>

namespace {

using tNames = std::vector<std::string>;

/// The names, all of which have started but those described after "-".
nPluginStart::tStarted startedFrom(const tNames& names) {
    std::vector<tPluginDescription> descriptions;
    for (const std::string& name : names) descriptions.emplace_back().name = name;
    nPluginStart::tStarted started = nPluginStart::noneStarted(descriptions);
    for (const std::string& name : names) {
        if (name == "-") break;
        started.at(name) = true;
    }
    return started;
}

TEST(nPluginStart, AllowsAPluginThatRequiresAnAllowedFeature) {
    EXPECT_TRUE(nPluginStart::featureAllowed(1, 1));
    EXPECT_TRUE(nPluginStart::featureAllowed(0x80000002, 0x80000001)) << "one shared feature is enough";
    EXPECT_FALSE(nPluginStart::featureAllowed(2, 0xFFFFFFFD));
    EXPECT_FALSE(nPluginStart::featureAllowed(0, 0xFFFFFFFF)) << "none required";
    EXPECT_FALSE(nPluginStart::featureAllowed(0xFFFFFFFF, 0)) << "none allowed";
}

struct tRow {
    tNames started;
    tNames dependencies;
    bool passes;
};

TEST(nPluginStart, DemandsThatEachDependencyHasStartedAndIsNamedOnceAndInOrder) {
    const std::string zero("zero\0one", 8);
    const tRow rows[] = {
        {{}, {}, true},
        {{"a"}, {}, true},
        {{}, {"a"}, false},
        {{"a", "c"}, {"a"}, true},
        {{"a", "c"}, {"a", "c"}, true},
        {{"a", "c"}, {"a", "b", "c"}, false},
        {{"a", "c"}, {"a", "c", "d"}, false},
        {{"a", "-", "b"}, {"b"}, false},
        // Described twice counts as once.
        {{"a"}, {"a", "a"}, false},
        {{"a", "a"}, {"a"}, true},
        {{"a", "a"}, {"a", "a"}, false},
        // Only sorted lists pass.
        {{"a", "b"}, {"b", "a"}, false},
        // Names are compared byte by byte, also an empty one.
        {{"Name"}, {"name"}, false},
        {{"Name"}, {"Name "}, false},
        {{zero}, {"zero"}, false},
        {{zero}, {zero}, true},
        {{""}, {""}, true},
        {{"a"}, {""}, false},
    };
    for (const tRow& row : rows) {
        EXPECT_EQ(nPluginStart::dependenciesStarted(row.dependencies, startedFrom(row.started)), row.passes)
            << testing::PrintToString(row.started) << ' ' << testing::PrintToString(row.dependencies);
    }
}

TEST(nPluginStart, RefusesForAMissingFeatureAndOtherwiseForAMissingDependency) {
    tPluginDescription description;
    description.requiresMask = 4;
    description.dependencies = {"a"};
    const nPluginStart::tStarted aStarted = startedFrom({"a"});
    const nPluginStart::tStarted noneStarted = startedFrom({"-", "a"});

    EXPECT_EQ(nPluginStart::refusal(description, 4, aStarted), nullptr);
    const zuerr::RaiseReport* const dependencyMissing = nPluginStart::refusal(description, 4, noneStarted);
    ASSERT_NE(dependencyMissing, nullptr);
    EXPECT_EQ(dependencyMissing->code, -52006);
    EXPECT_STREQ(dependencyMissing->site.file, ".\\source\\tPluginManager");
    EXPECT_EQ(dependencyMissing->site.line, 48);
    for (const nPluginStart::tStarted& started : {aStarted, noneStarted}) {
        const zuerr::RaiseReport* const featureMissing = nPluginStart::refusal(description, 3, started);
        ASSERT_NE(featureMissing, nullptr);
        EXPECT_EQ(featureMissing->code, -52002);
        EXPECT_STREQ(featureMissing->site.file, ".\\source\\tPluginManager");
        EXPECT_EQ(featureMissing->site.line, 41);
    }
}

}  // namespace
