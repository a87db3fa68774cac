// Runs over plug-in directories that need a file system with links and arbitrary bytes in names.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <string>

#include "tests/support/descriptionReads.h"
#include "tests/support/serviceWorld.h"

namespace {

class tServiceRunHostileDirectory : public testing::Test {
protected:
    tServiceRunHostileDirectory() { startService(); }

    static void run() {
        signalServiceStop();
        runService();
    }

    static std::vector<std::string> names() {
        std::vector<std::string> names;
        for (const tPluginEntry& entry : gService->pluginManager.entries()) names.push_back(entry.description.name);
        return names;
    }

    static std::string messagesAbout(const std::string& path) {
        return "Failed to parse service description file: " + path + "\nCannot init system framework\n";
    }

    support::tServiceWorld world;
};

TEST_F(tServiceRunHostileDirectory, EntriesThatAreNotRegularFilesAreSkippedSilently) {
    const std::filesystem::path outside = world.statusFolder / "outside";
    world.describe("a.ini", world.calling("A"));
    std::filesystem::create_directory(outside);
    std::filesystem::create_symlink("missing", world.plugins / "nowhere.ini");
    std::filesystem::create_symlink("loop.ini", world.plugins / "loop.ini");
    std::filesystem::create_symlink(outside, world.plugins / "folder.ini");
    std::filesystem::create_symlink("/dev/full", world.plugins / "device.ini");
    ASSERT_EQ(mkfifo((world.plugins / "pipe.ini").c_str(), 0600), 0);  // opening it would block forever
    run();
    EXPECT_THAT(names(), testing::ElementsAre("A"));
    EXPECT_EQ(gService->messages, "Cannot init system framework\n");
}

TEST_F(tServiceRunHostileDirectory, AFileThatBecomesADanglingLinkFailsOnlyItsPlugin) {
    const std::string link = world.describe("link.ini", world.calling("Link"));
    world.describe("a.ini", world.calling("A"));
    const support::tDescriptionReads reads([&](const std::string& path) {
        if (path != link) return;
        std::filesystem::remove(link);
        std::filesystem::create_symlink("missing", link);
    });
    run();
    EXPECT_THAT(names(), testing::ElementsAre("A"));
    EXPECT_EQ(gService->messages, messagesAbout(link));
}

TEST_F(tServiceRunHostileDirectory, AFileThatCannotBeOpenedFailsOnlyItsPlugin) {
    const std::string unreadable = world.describe("unreadable.ini", world.calling("Unreadable"));
    world.describe("a.ini", world.calling("A"));
    world.describe("z.ini", world.calling("Z"));
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none{0, limit.rlim_max};  // permissions would not stop root from reading
    const support::tDescriptionReads reads(
        [&](const std::string& path) { setrlimit(RLIMIT_NOFILE, path == unreadable ? &none : &limit); });
    world.deployment.onPause = [&limit] { setrlimit(RLIMIT_NOFILE, &limit); };  // all files have been read then
    run();
    EXPECT_THAT(names(), testing::ElementsAre("A", "Z"));
    EXPECT_EQ(gService->messages, messagesAbout(unreadable));
}

TEST_F(tServiceRunHostileDirectory, FileNamesMayContainQuotesAndControlCharacters) {
    world.describe("\"'\x01\t\x1B[31m\x7F.ini", world.calling("A"));
    world.describe("two\nlines.ini", world.calling("B"));
    const std::string bad = world.describe("\"bad\n\x02.ini", "nonsense");
    run();
    EXPECT_THAT(names(), testing::ElementsAre("A", "B"));
    EXPECT_EQ(gService->messages, messagesAbout(bad));
}

TEST_F(tServiceRunHostileDirectory, AFileNameThatIsNotTextFailsOnlyItsPlugin) {
    const std::string bad = world.describe("\xFF\xC0\x80.ini", world.calling("Bad"));
    world.describe("a.ini", world.calling("A"));
    run();
    EXPECT_THAT(names(), testing::ElementsAre("A"));
    EXPECT_EQ(gService->messages, messagesAbout(bad));
}

}  // namespace
