#include <gmock/gmock.h>

#include <sstream>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

class statusFile : public tEndToEnd {};

/// The text with plain line ends, without the lines that differ from run to run.
std::string steadyText(const tStatusFile& status) {
    std::string result;
    std::istringstream lines(status.bytes);
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (line.starts_with("Updated: ") || line.starts_with("Init Time ")) continue;
        if (line.find(" Time: ") == std::string::npos) result += line + "\n";
    }
    return result;
}

TEST_F(statusFile, ShowsThePluginsOnceTheyAreStarted) {
    addPlugin("A", {.initialize = "InitWarning3"});
    addPlugin("B", {.dependencies = "A, None", .requires_ = "5"});
    const std::string libraryOfA = utf8Path(libraries() / L"A.dll");
    const std::string libraryOfB = utf8Path(libraries() / L"B.dll");
    EXPECT_EQ(steadyText(startPlugins()),
              "ZU-Ziptra Remote Configuration and Deployment status\nAllowed: 0xffffffff\n\n"
              "A (depends on )\nLoaded From: " +
                  libraryOfA + "\nRequires: 1\nInitWarning3 Code: 3\n\nB (depends on A, None)\nLoaded From: " +
                  libraryOfB + "\nRequires: 5\nInitOk Code: -52006\n\n");
}

TEST_F(statusFile, ThatIsReadOnlyStaysAndStopsNoPlugin) {
    addPlugin("A", {.cleanup = "CleanupOk"});
    writeFile(tStatusFile::path(), "earlier");
    std::filesystem::permissions(tStatusFile::path(), std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::remove);
    start();
    waitFor("the plug-in's start", [&] { return calls() == "A loads\nA InitOk\n"; });
    process().interrupt();
    process().exitCode();
    EXPECT_EQ(calls(), "A loads\nA InitOk\nA CleanupOk\nA unloads\n");
    EXPECT_EQ(readFile(tStatusFile::path()), "earlier");
    EXPECT_EQ(tStatusFile::parse(readFile(tStatusFile::temporaryPath())).names(), "A");
}

}  // namespace
}  // namespace endtoend
