// Runs over plug-in directories whose file names Windows does not allow.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/serviceWorld.h"

namespace {

class ServiceRunHostileDirectory : public testing::Test {
protected:
    ServiceRunHostileDirectory() { startService(); }

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

TEST_F(ServiceRunHostileDirectory, FileNamesMayContainQuotesAndControlCharacters) {
    world.describe("\"'\x01\t\x1B[31m\x7F.ini", world.calling("A"));
    world.describe("two\nlines.ini", world.calling("B"));
    const std::string bad = world.describe("\"bad\n\x02.ini", "nonsense");
    run();
    EXPECT_THAT(names(), testing::ElementsAre("A", "B"));
    EXPECT_EQ(gService->messages, messagesAbout(bad));
}

TEST_F(ServiceRunHostileDirectory, AFileNameThatIsNotUtf8CostsItsPluginAlone) {
    const std::string bad = world.describe("\xFF\xC0\x80.ini", world.calling("Bad"));
    world.describe("a.ini", world.calling("A"));
    run();
    EXPECT_THAT(names(), testing::ElementsAre("A"));
    EXPECT_EQ(gService->messages, messagesAbout(bad));
}

}  // namespace
