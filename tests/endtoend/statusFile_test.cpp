#include <gmock/gmock.h>

#include <sstream>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

class StatusFile : public EndToEnd {
protected:
    /// The text with plain line ends, without the lines that differ from run to run.
    static std::string steadyText(const tStatusFile& status) {
        std::string result;
        std::istringstream lines(status.bytes);
        for (std::string line; std::getline(lines, line);) {
            if (line.ends_with('\r')) line.pop_back();
            if (line.starts_with("Updated: ") || line.starts_with("Init Time ")) continue;
            // Calls that took no measurable time leave their lines out when they succeeded.
            if (line.find(" Time: ") != std::string::npos || line.ends_with(" Code: 0")) continue;
            result += line + "\n";
        }
        return result;
    }
};

constexpr const char* banner = "ZU-Ziptra Remote Configuration and Deployment status\n";

TEST_F(StatusFile, IsWrittenBeforeAnythingElseHappens) {
    scriptSystemCalls();
    addPlugin("A");
    const tGate gate = holdStatusWrite(2);
    start();
    gate.waitUntilHeld();
    const tStatusFile status = tStatusFile::read();
    EXPECT_EQ(steadyText(status), std::string(banner) + "Allowed: 0xffffffff\n\n");
    EXPECT_EQ(status.initTime, std::nullopt);
    EXPECT_EQ(calls(), "");
}

TEST_F(StatusFile, ShowsThePluginsOnceTheyAreStarted) {
    addPlugin("A", {.initialize = "InitWarning3", .stop = "StopThrowsRuntimeError"});
    addPlugin("B", {.dependencies = "A, None", .requires_ = "5"});
    const std::string libraryOfA = utf8Path(libraries() / L"A.dll");
    const std::string libraryOfB = utf8Path(libraries() / L"B.dll");
    EXPECT_EQ(steadyText(startPlugins()),
              std::string(banner) + "Allowed: 0xffffffff\n\n" + "A (depends on )\nLoaded From: " + libraryOfA +
                  "\nRequires: 1\nInitWarning3 Code: 3\n\n" + "B (depends on A, None)\nLoaded From: " + libraryOfB +
                  "\nRequires: 5\nInitOk Code: -52006\n\n");
}

TEST_F(StatusFile, ShowsStopAndCleanupBeforeTheServiceEnds) {
    scriptSystemCalls();
    addPlugin("A", {.stop = "StopThrowsRuntimeError", .cleanup = "CleanupThrowsBadAlloc"});
    const tGate gate = holdStatusWrite(5);
    startPlugins();
    process().interrupt();
    gate.waitUntilHeld();
    const std::string text = steadyText(tStatusFile::read());
    EXPECT_THAT(text, testing::EndsWith("StopThrowsRuntimeError Code: -52003\nCleanupThrowsBadAlloc Code: -52000\n\n"));
    gate.open();
    process().exitCode();
    EXPECT_EQ(steadyText(tStatusFile::read()), text);
}

TEST_F(StatusFile, MeasuresTheCallsInMilliseconds) {
    addPlugin("A", {.initialize = "InitWaits"});
    const tGate gate = holdPlugin("A");
    tStatusWrites writes;
    start();
    gate.waitUntilHeld();
    Sleep(100);
    gate.open();
    writes.waitFor(3);
    const std::vector<tPluginStatus::tCall> calls = tStatusFile::read().plugin("A").calls;
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].label, "InitWaits");
    EXPECT_GE(calls[0].milliseconds, 80u);
    EXPECT_LT(calls[0].milliseconds, 60000u);
}

// A status file that cannot be written stops no plug-in.

class UnwritableStatusFile : public StatusFile {
protected:
    UnwritableStatusFile() { addPlugin("A", {.cleanup = "CleanupOk"}); }

    /// Runs the plug-in from its start to its clean-up.
    void expectWholeLife() {
        start();
        waitFor("the plug-in's start", [&] { return calls() == "A loads\nA InitOk\n"; });
        process().interrupt();
        process().exitCode();
        EXPECT_EQ(calls(), "A loads\nA InitOk\nA CleanupOk\nA unloads\n");
    }
};

TEST_F(UnwritableStatusFile, BecauseTheFolderIsMissing) {
    std::filesystem::remove(makerFolder());
    expectWholeLife();
    EXPECT_FALSE(std::filesystem::exists(makerFolder()));
}

TEST_F(UnwritableStatusFile, BecauseTheFolderIsUnknown) {
    scriptSystemCalls();
    writeFile(besideExecutable(L"folder.unknown"), "");
    expectWholeLife();
    EXPECT_TRUE(std::filesystem::is_empty(makerFolder()));
}

TEST_F(UnwritableStatusFile, BecauseItIsReadOnly) {
    writeFile(tStatusFile::path(), "earlier");
    std::filesystem::permissions(tStatusFile::path(), std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::remove);
    expectWholeLife();
    EXPECT_EQ(readFile(tStatusFile::path()), "earlier");
    EXPECT_EQ(tStatusFile::parse(readFile(tStatusFile::temporaryPath())).names(), "A");
}

TEST_F(UnwritableStatusFile, BecauseAReaderHasItOpenIsWrittenOnceThatOneHasClosedIt) {
    writeFile(tStatusFile::path(), "earlier");
    {
        const HANDLE handle =
            CreateFileW(tStatusFile::path().c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        const tHandle reader(handle);
        start();
        waitFor("the plug-in's start", [&] { return calls() == "A loads\nA InitOk\n"; });
        EXPECT_EQ(readFile(tStatusFile::path()), "earlier");
    }
    EXPECT_EQ(stop().names(), "A");
}

}  // namespace
}  // namespace endtoend
