#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

using testing::HasSubstr;
using testing::Not;

class PluginOrder : public EndToEnd {
protected:
    /// Stages plug-ins of these names with these dependencies.
    void add(std::initializer_list<std::pair<const char*, const char*>> plugins) {
        for (const auto& [name, dependencies] : plugins) addPlugin(name, {.dependencies = dependencies});
    }

    /// "NAME CODE, ..." in start order, once the plug-ins have run.
    std::string outcome() {
        startPlugins();
        std::string result;
        for (const tPluginStatus& plugin : stop().plugins) {
            result += (result.empty() ? "" : ", ") + plugin.name + " " + std::to_string(plugin.code("InitOk"));
        }
        return result;
    }
};

TEST_F(PluginOrder, IsByTheBytesOfTheNames) {
    add({{"b", ""}, {"C", ""}, {"a", ""}, {"\xC3\xA9", ""}, {"B2", ""}, {"B10", ""}});
    EXPECT_EQ(outcome(), "B10 0, B2 0, C 0, a 0, b 0, \xC3\xA9 0");
}

TEST_F(PluginOrder, PutsAPluginBeforeOneThatNamesIt) {
    add({{"A", "Z"}, {"Z", ""}});
    EXPECT_EQ(outcome(), "Z 0, A 0");
}

TEST_F(PluginOrder, AChainStartsFromItsEnd) {
    add({{"A", ""}, {"B", "A"}, {"C", "B"}, {"D", "C, A"}});
    EXPECT_EQ(outcome(), "A 0, B 0, C 0, D 0");
}

TEST_F(PluginOrder, StopAndCleanupGoTheOtherWay) {
    for (const char* name : {"A", "B", "C"}) addPlugin(name, {.stop = "StopOk", .cleanup = "CleanupOk"});
    runThrough();
    EXPECT_EQ(calls(),
              "A loads\nA InitOk\nB loads\nB InitOk\nC loads\nC InitOk\n"
              "C StopOk\nB StopOk\nA StopOk\n"
              "C CleanupOk\nC unloads\nB CleanupOk\nB unloads\nA CleanupOk\nA unloads\n");
}

TEST_F(PluginOrder, AFailureFailsTheDependantsAllTheWayDownAndNoOther) {
    addPlugin("A", {.initialize = "InitFails7"});
    add({{"B", "A"}, {"C", "B"}, {"D", ""}});
    EXPECT_EQ(outcome(), "A 0, B -52006, C -52006, D 0");
    EXPECT_EQ(tStatusFile::read().plugin("A").code("InitFails7"), -7);
    EXPECT_EQ(calls(), "A loads\nA InitFails7\nA unloads\nD loads\nD InitOk\nD unloads\n");
}

TEST_F(PluginOrder, ADependencyThatNobodyDescribesFails) {
    add({{"A", "Nobody"}, {"B", ""}});
    EXPECT_EQ(outcome(), "A -52006, B 0");
}

TEST_F(PluginOrder, DependenciesAreNamedWithRegardToCase) {
    add({{"A", "z"}, {"Z", ""}});
    EXPECT_EQ(outcome(), "A -52006, Z 0");
}

TEST_F(PluginOrder, NobodyOfACycleStarts) {
    add({{"A", "B"}, {"B", "A"}, {"C", "C"}, {"D", ""}});
    EXPECT_EQ(outcome(), "A -52006, B -52006, C -52006, D 0");
}

TEST_F(PluginOrder, NobodyOfALongerCycleStarts) {
    add({{"A", "C"}, {"B", "A"}, {"C", "B"}});
    startPlugins();
    for (const tPluginStatus& plugin : stop().plugins) EXPECT_EQ(plugin.code("InitOk"), -52006) << plugin.name;
    EXPECT_EQ(calls(), "");
}

TEST_F(PluginOrder, ADependencyNamedTwiceIsNeverMet) {
    add({{"A", ""}, {"B", "A, A"}});
    EXPECT_EQ(outcome(), "A 0, B -52006");
}

TEST_F(PluginOrder, DependenciesAreTrimmedSortedAndShownSo) {
    add({{"A", ""}, {"B", ""}, {"C", "  B ,,A,, "}});
    EXPECT_EQ(outcome(), "A 0, B 0, C 0");
    EXPECT_EQ(tStatusFile::read().plugin("C").dependencies, "A, B");
}

TEST_F(PluginOrder, PluginsOfTheSameNameStartSideBySide) {
    add({{"A", ""}, {"B", "A"}});
    describe(L"again.ini", "[Service]\nName=A\nInitialize=InitOk\nPath=" + utf8Path(libraries() / L"B.dll"));
    EXPECT_EQ(outcome(), "A 0, A 0, B 0");
}

TEST_F(PluginOrder, ALotOfPluginsAllStart) {
    // More than the sort handles by plain insertion, each with the one before it as dependency.
    const tPath library = addLibrary(libraries() / L"shared.dll");
    std::string expected;
    for (int i = 100; i < 200; ++i) {
        const std::string name = "P" + std::to_string(i);
        describe(wide(name + ".ini"), "[Service]\nName=" + name + "\nInitialize=InitOk\nPath=" + utf8Path(library) +
                                          "\nDependencies=" + (i == 100 ? "" : "P" + std::to_string(i - 1)));
        expected += (i == 100 ? "" : ", ") + name + " 0";
    }
    EXPECT_EQ(outcome(), expected);
}

}  // namespace
}  // namespace endtoend
