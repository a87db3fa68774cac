// Runs with paths that have a meaning on Windows only.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/support/serviceWorld.h"

namespace {

class ServiceRunHostilePlaces : public testing::Test {
protected:
    ServiceRunHostilePlaces() { startService(); }

    static void run() {
        signalServiceStop();
        runService();
    }

    /// "name code" of each plug-in in start order.
    static std::string outcome() {
        std::string outcome;
        for (const tPluginEntry& entry : gService->pluginManager.entries()) {
            outcome += entry.description.name + " " + std::to_string(entry.initCode) + "\n";
        }
        return outcome;
    }

    support::tServiceWorld world;
};

TEST_F(ServiceRunHostilePlaces, ASharedDirectoryThatIsNoDirectoryCannotBeOpened) {
    for (const char* const place : {"Q:\\Shared", "Q:", "NUL", "con", "\\\\.\\NUL", "\\\\.\\PhysicalDrive99", "\\\\?\\",
                                    "*", "?", "<>|", "C:\\\x01", "::", "%TEMP%", "\xFF\xFE"}) {
        world.places.sharedDirectory = place;
        gService->messages.clear();
        runService();  // it would wait forever otherwise
        EXPECT_EQ(gService->messages, "Failed to open plugins directory.\n") << place;
    }
}

TEST_F(ServiceRunHostilePlaces, APathThatIsNoLibraryFailsItsPluginAlone) {
    int files = 0;
    for (const char* const path : {"Q:\\a.dll", "Q:a.dll", "NUL", "con", "\\\\.\\NUL", "\\\\?\\", "C:\\", "*.dll",
                                   "a:b", "C:\\Windows", "\xFF\xFE.dll", "kernel32.dll:stream"}) {
        world.describe(std::to_string(++files) + ".ini", "[Service]\nName=Odd\nPath=" + std::string(path) + "\n");
    }
    world.describe("free.ini", world.calling("Free"));
    run();
    std::string expected = "Free 3\n";
    for (int i = 0; i < files; ++i) expected += "Odd -52005\n";
    EXPECT_EQ(outcome(), expected);
}

TEST_F(ServiceRunHostilePlaces, ADescriptionThatAnotherProcessHasLockedCostsItsPluginAlone) {
    const std::string kept = world.describe("kept.ini", world.calling("Kept"));
    world.describe("free.ini", world.calling("Free"));
    const HANDLE handle = CreateFileA(kept.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    run();
    CloseHandle(handle);
    EXPECT_EQ(outcome(), "Free 3\n");
    EXPECT_EQ(gService->messages,
              "Failed to parse service description file: " + kept + "\nCannot init system framework\n");
}

}  // namespace
