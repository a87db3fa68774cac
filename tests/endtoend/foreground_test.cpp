#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

class foreground : public tEndToEnd {};

TEST_F(foreground, RunsUntilCtrlC) {
    addPlugin("A", {.stop = "StopOk", .cleanup = "CleanupOk"});
    EXPECT_EQ(startPlugins().names(), "A");
    EXPECT_TRUE(process().running());
    EXPECT_EQ(calls(), "A loads\nA InitOk\n");
    stop();
    EXPECT_EQ(calls(), "A loads\nA InitOk\nA StopOk\nA CleanupOk\nA unloads\n");
}

TEST_F(foreground, PrintsNothing) {
    addPlugin("A");
    describe(L"malformed.ini", "nonsense");
    runThrough();
    EXPECT_EQ(process().output() + process().errors(), "");
}

TEST_F(foreground, CtrlBreakStopsItToo) {
    addPlugin("A", {.cleanup = "CleanupOk"});
    startPlugins();
    const DWORD error = process().sendConsoleEvent(CTRL_BREAK_EVENT);
    if (isWine() && error == ERROR_INVALID_HANDLE) GTEST_SKIP() << "Wine generates no Ctrl+Break";
    ASSERT_EQ(error, 0u);
    process().exitCode();
    EXPECT_THAT(calls(), testing::HasSubstr("A CleanupOk\nA unloads\n"));
}

TEST_F(foreground, CtrlCDuringTheConstructionSkipsTheRunButNotTheStop) {
    scriptSystemCalls();
    addPlugin("A");
    const tGate gate = holdStatusWrite(1);
    tStatusWrites writes;
    start();
    gate.waitUntilHeld();
    interruptForSure();
    gate.open();
    process().exitCode();
    writes.waitFor(2);  // at the beginning and at the end
    EXPECT_EQ(tStatusFile::read().names(), "");
    EXPECT_EQ(calls(), "");
}

TEST_F(foreground, FurtherCtrlCsDuringTheStopChangeNothing) {
    scriptSystemCalls();
    addPlugin("A", {.stop = "StopWaits", .cleanup = "CleanupOk"});
    addPlugin("B", {.stop = "StopOk", .cleanup = "CleanupOk"});
    const tGate gate = holdPlugin("A");
    startPlugins();
    interruptForSure();
    gate.waitUntilHeld();
    interruptForSure();
    interruptForSure();
    EXPECT_TRUE(process().running());
    gate.open();
    process().exitCode();
    EXPECT_THAT(calls(), testing::EndsWith("B StopOk\nA StopWaits\nB CleanupOk\nB unloads\nA CleanupOk\nA unloads\n"));
}

TEST_F(foreground, ExitsWithTheLastErrorAfterTheStop) {
    addPlugin("A");
    std::filesystem::remove(makerFolder());
    start();
    waitFor("the plug-in", [&] { return calls() == "A loads\nA InitOk\n"; });
    process().interrupt();
    EXPECT_EQ(process().exitCode(), DWORD{ERROR_PATH_NOT_FOUND});
}

}  // namespace
}  // namespace endtoend
