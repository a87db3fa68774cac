#include "source/tPluginManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/managerTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class tPluginManagerTest : public support::tManagerTest {};

// One plug-in.

TEST_F(tPluginManagerTest, AnEmptyListYieldsNoEntriesAndStopAndCleanUpDoNothing) {
    start({});
    stopAndCleanUp();
    EXPECT_THAT(manager_.entries(), IsEmpty());
    EXPECT_THAT(plugins_.calls, IsEmpty());
}

TEST_F(tPluginManagerTest, APluginIsLoadedItsEntriesAreFoundAndInitializeIsCalled) {
    start({describe("A")});
    EXPECT_THAT(plugins_.calls,
                ElementsAre("load A", "symbol A Init", "symbol A Stop", "symbol A Cleanup", "call A Init"));
    EXPECT_THAT(initCodes(), ElementsAre(0));
}

TEST_F(tPluginManagerTest, AnEntryContainsAFullCopyOfItsDescription) {
    tPluginDescription description = describe("A", {"nobody"});
    description.name = "name";
    description.requiresMask = 6;
    start({description});
    const tPluginDescription& kept = manager_.entries().front().description;
    EXPECT_EQ(kept.name, "name");
    EXPECT_THAT(kept.dependencies, ElementsAre("nobody"));
    EXPECT_EQ(kept.requiresMask, 6U);
    EXPECT_EQ(kept.path, "A");
    EXPECT_EQ(kept.initialize, "Init");
    EXPECT_EQ(kept.stop, "Stop");
    EXPECT_EQ(kept.cleanup, "Cleanup");
}

TEST_F(tPluginManagerTest, APositiveInitializeResultCountsAsStartedAndIsStored) {
    plugins_.plugin("A").initialize = [] { return 3; };
    start({describe("A"), describe("B", {"A"})});
    EXPECT_THAT(initCodes(), ElementsAre(3, 0));
}

TEST_F(tPluginManagerTest, EntriesWithoutANameAreNotLookedUpAndDoNothing) {
    tPluginDescription description = describe("A");
    description.initialize = description.stop = description.cleanup = "";
    start({description});
    stopAndCleanUp();
    EXPECT_THAT(plugins_.calls, ElementsAre("load A", "unload A"));
    EXPECT_THAT(initCodes(), ElementsAre(0));
    EXPECT_THAT(stopCodes(), ElementsAre(0));
    EXPECT_THAT(cleanupCodes(), ElementsAre(0));
}

TEST_F(tPluginManagerTest, EachCallAppendsToTheEntriesAndClearsNone) {
    start({describe("A")});
    start({describe("B"), describe("C")});
    ASSERT_EQ(manager_.entries().size(), 3U);
    EXPECT_EQ(manager_.entries()[0].description.name, "A");
    EXPECT_EQ(manager_.entries()[2].description.name, "C");
}

// Features.

TEST_F(tPluginManagerTest, APluginWithoutAnAllowedFeatureIsNeverLoaded) {
    tPluginDescription description = describe("A");
    description.requiresMask = 2;
    manager_.startAll({description}, 0xFFFFFFFD);
    EXPECT_THAT(initCodes(), ElementsAre(-52002));
    EXPECT_THAT(plugins_.calls, IsEmpty());
    EXPECT_THAT(reports_.texts,
                ElementsAre(R"({"error_constant":"zukesterr_featureUnsupported",)"
                            R"("file":".\\source\\tPluginManager","line":41,"component":"zuZiptraRemoteService"})"));
}

TEST_F(tPluginManagerTest, FeaturesAreCheckedBeforeDependencies) {
    tPluginDescription description = describe("A", {"nobody"});
    description.requiresMask = 0;
    start({description});
    EXPECT_THAT(initCodes(), ElementsAre(-52002));
}

// Dependencies.

TEST_F(tPluginManagerTest, APluginAfterItsDependenciesStarts) {
    start({describe("A"), describe("B"), describe("C", {"A", "B"})});
    EXPECT_THAT(initCodes(), ElementsAre(0, 0, 0));
}

TEST_F(tPluginManagerTest, AFailingPluginFailsOnlyItsDependants) {
    plugins_.plugin("A").initialize = [] { return -7; };
    start({describe("A"), describe("B", {"A"}), describe("C")});
    EXPECT_THAT(initCodes(), ElementsAre(-7, -52006, 0));
    EXPECT_EQ(manager_.entries()[0].library.loaded, 0);
    EXPECT_THAT(plugins_.callsOf("load"), ElementsAre("A", "C"));
    EXPECT_THAT(plugins_.callsOf("unload"), ElementsAre("A"));
}

TEST_F(tPluginManagerTest, AFailureAffectsTheWholeChainOfDependants) {
    plugins_.plugin("A").loads = false;
    start({describe("A"), describe("B", {"A"}), describe("C", {"B"}), describe("D", {"C"})});
    EXPECT_THAT(initCodes(), ElementsAre(-52005, -52006, -52006, -52006));
}

TEST_F(tPluginManagerTest, APluginListedBeforeItsDependencyFailsEvenIfTheDependencyStartsLater) {
    start({describe("A", {"B"}), describe("B")});
    EXPECT_THAT(initCodes(), ElementsAre(-52006, 0));
}

TEST_F(tPluginManagerTest, ADependencyWithoutADescriptionIsMissing) {
    start({describe("A"), describe("B", {"A", "nobody"})});
    EXPECT_THAT(initCodes(), ElementsAre(0, -52006));
    EXPECT_THAT(reports_.texts,
                ElementsAre(R"({"error_constant":"zukesterr_resourceNotFound",)"
                            R"("file":".\\source\\tPluginManager","line":48,"component":"zuZiptraRemoteService"})"));
}

TEST_F(tPluginManagerTest, ADependencyStartedByAnEarlierCallDoesNotCount) {
    start({describe("A")});
    start({describe("B", {"A"})});
    EXPECT_THAT(initCodes(), ElementsAre(0, -52006));
}

TEST_F(tPluginManagerTest, TwoPluginsOfOneNameSatisfyOnlyOneMentionOfIt) {
    start({describe("A"), describe("A"), describe("B", {"A"}), describe("C", {"A", "A"})});
    EXPECT_THAT(initCodes(), ElementsAre(0, 0, 0, -52006));
}

TEST_F(tPluginManagerTest, APluginThatDependsOnItselfNeverStarts) {
    start({describe("A", {"A"})});
    EXPECT_THAT(initCodes(), ElementsAre(-52006));
}

// Many.

TEST_F(tPluginManagerTest, TenThousandPluginsStartInOrderEachAfterThePrecedingOne) {
    constexpr int many = 10'000;
    std::vector<tPluginDescription> descriptions;
    for (int i = 0; i < many; ++i) {
        descriptions.push_back(describe("A"));
        descriptions.back().name = std::to_string(i);
        if (i > 0) descriptions.back().dependencies = {std::to_string(i - 1)};
    }
    start(descriptions);
    stopAndCleanUp();
    ASSERT_EQ(manager_.entries().size(), descriptions.size());
    EXPECT_THAT(initCodes(), testing::Each(0));
    EXPECT_EQ(plugins_.plugin("A").references, 0);
    EXPECT_EQ(plugins_.callsOf("call").size(), 3U * many);
}

TEST_F(tPluginManagerTest, OnePluginMayDependOnTenThousand) {
    constexpr int many = 10'000;
    std::vector<tPluginDescription> descriptions;
    std::vector<std::string> names;
    for (int i = 0; i < many; ++i) {
        names.push_back(std::to_string(i));
        descriptions.push_back(describe("A"));
        descriptions.back().name = names.back();
    }
    std::sort(names.begin(), names.end());
    descriptions.push_back(describe("B", names));
    names.emplace_back("nobody");
    descriptions.push_back(describe("C", names));
    start(descriptions);
    EXPECT_EQ(manager_.entries()[many].initCode, 0);
    EXPECT_EQ(manager_.entries()[many + 1].initCode, -52006);
}

}  // namespace
