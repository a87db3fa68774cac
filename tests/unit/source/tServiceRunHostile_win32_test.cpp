// Runs with paths that have a meaning on Windows only.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/support/runTest.h"

namespace {

using tServiceRunHostile = support::tRunTest;

TEST_F(tServiceRunHostile, ASharedDirectoryThatIsNoDirectoryCannotBeOpened) {
    for (const char* const place : {"Q:\\Shared", "Q:", "NUL", "con", R"(\\.\NUL)", R"(\\.\PhysicalDrive99)", R"(\\?\)",
                                    "*", "?", "<>|", "C:\\\x01", "::", "%TEMP%", "\xFF\xFE"}) {
        world.places.sharedDirectory = place;
        gService->messages.clear();
        runService();  // it would wait forever otherwise
        EXPECT_EQ(gService->messages, "Failed to open plugins directory.\n") << place;
    }
}

TEST_F(tServiceRunHostile, APathThatIsNoLibraryFailsItsPluginAlone) {
    std::size_t files = 0;
    for (const char* const path : {"Q:\\a.dll", "Q:a.dll", "NUL", "con", R"(\\.\NUL)", R"(\\?\)", "C:\\", "*.dll",
                                   "a:b", "C:\\Windows", "\xFF\xFE.dll", "kernel32.dll:stream"}) {
        world.describe(std::to_string(++files) + ".ini", "[Service]\nName=Odd\nPath=" + std::string(path) + "\n");
    }
    world.describe("free.ini", world.calling("Free"));
    runWithoutWaiting();
    std::vector<std::string> expected(files, "Odd -52005");
    expected.insert(expected.begin(), "Free 3");
    EXPECT_EQ(outcome(), expected);
}

TEST_F(tServiceRunHostile, ADescriptionThatAnotherProcessHasLockedCostsItsPluginAlone) {
    const std::string kept = world.describe("kept.ini", world.calling("Kept"));
    world.describe("free.ini", world.calling("Free"));
    const HANDLE handle = CreateFileA(kept.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    runWithoutWaiting();
    CloseHandle(handle);
    EXPECT_THAT(outcome(), testing::ElementsAre("Free 3"));
    EXPECT_EQ(gService->messages, rejection(kept) + support::noFramework);
}

}  // namespace
