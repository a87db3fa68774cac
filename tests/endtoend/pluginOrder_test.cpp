#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

class PluginOrder : public EndToEnd {};

TEST_F(PluginOrder, IsByDependencyAndNameAndReversedForStopAndCleanup) {
    addPlugin("A", {.dependencies = "B", .stop = "StopOk", .cleanup = "CleanupOk"});
    addPlugin("B", {.stop = "StopOk", .cleanup = "CleanupOk"});
    addPlugin("C", {.stop = "StopOk", .cleanup = "CleanupOk"});
    EXPECT_EQ(runThrough().names(), "B A C");
    EXPECT_EQ(calls(),
              "B loads\nB InitOk\nA loads\nA InitOk\nC loads\nC InitOk\n"
              "C StopOk\nA StopOk\nB StopOk\n"
              "C CleanupOk\nC unloads\nA CleanupOk\nA unloads\nB CleanupOk\nB unloads\n");
}

TEST_F(PluginOrder, AFailureFailsTheDependantsAndNoOther) {
    addPlugin("A", {.initialize = "InitFails7"});
    addPlugin("B", {.dependencies = "A"});
    addPlugin("C", {.dependencies = "B"});
    addPlugin("D");
    const tStatusFile status = runThrough();
    EXPECT_EQ(status.plugin("A").code("InitFails7"), -7);
    EXPECT_EQ(status.plugin("B").code("InitOk"), -52006);
    EXPECT_EQ(status.plugin("C").code("InitOk"), -52006);
    EXPECT_EQ(calls(), "A loads\nA InitFails7\nA unloads\nD loads\nD InitOk\nD unloads\n");
}

}  // namespace
}  // namespace endtoend
