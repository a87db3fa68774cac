// Runs over kinds of paths that exist only on Windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/support/allocations.h"
#include "tests/support/imports_win32.h"
#include "tests/support/serviceWorld.h"

namespace {

class tServiceRunHostilePlaces : public testing::Test {
protected:
    tServiceRunHostilePlaces() { startService(); }

    static void run() {
        signalServiceStop();
        runService();
    }

    /// Returns "name code" of each plug-in in start order.
    static std::string outcome() {
        std::string outcome;
        for (const tPluginEntry& entry : gService->pluginManager.entries()) {
            outcome += entry.description.name + " " + std::to_string(entry.initCode) + "\n";
        }
        return outcome;
    }

    support::tServiceWorld world;
};

TEST_F(tServiceRunHostilePlaces, ASharedDirectoryThatIsNotADirectoryCannotBeOpened) {
    for (const char* const place : {"Q:\\Shared", "Q:", "NUL", "con", "\\\\.\\NUL", "\\\\.\\PhysicalDrive99", "\\\\?\\",
                                    "*", "?", "<>|", "C:\\\x01", "::", "%TEMP%", "\xFF\xFE"}) {
        world.places.sharedDirectory = place;
        gService->messages.clear();
        runService();  // would wait forever otherwise
        EXPECT_EQ(gService->messages, "Failed to open plugins directory.\n") << place;
    }
}

TEST_F(tServiceRunHostilePlaces, APathThatIsNotALibraryFailsOnlyItsPlugin) {
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

TEST_F(tServiceRunHostilePlaces, ADescriptionThatIsOpenWithoutSharingFailsOnlyItsPlugin) {
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

TEST_F(tServiceRunHostilePlaces, ADescriptionThatIsListedButCannotBeOpenedFailsOnlyItsPlugin) {
    // Like a link whose target is gone.
    const std::string link = world.describe("link.ini", world.calling("Link"));
    world.describe("free.ini", world.calling("Free"));
    imports::_wfopen.replace([](const wchar_t* path, const wchar_t* mode) {
        const bool isLink = std::wstring(path).ends_with(L"link.ini");
        return isLink ? nullptr : imports::_wfopen.real(path, mode);
    });
    run();
    EXPECT_EQ(outcome(), "Free 3\n");
    EXPECT_EQ(gService->messages,
              "Failed to parse service description file: " + link + "\nCannot init system framework\n");
}

TEST_F(tServiceRunHostilePlaces, ADescriptionThatCannotBeReadCompletelyFailsOnlyItsPlugin) {
    // As on a drive that is removed.
    const std::string torn = world.describe("torn.ini", world.calling("Torn"));
    world.describe("whole.ini", world.calling("Whole"));
    FILE* tornFile = nullptr;
    imports::_wfopen.replace([&tornFile](const wchar_t* path, const wchar_t* mode) {
        FILE* const file = imports::_wfopen.real(path, mode);
        tornFile = std::wstring(path).ends_with(L"torn.ini") ? file : nullptr;
        return file;
    });
    imports::fread.replace([&tornFile](void* buffer, size_t size, size_t count, FILE* file) {
        const size_t given = imports::fread.real(buffer, size, count, file);
        if (file != tornFile || count < 100) return given;
        file->_flag |= _IOERR;
        return given / 2;
    });
    run();
    EXPECT_EQ(outcome(), "Whole 3\n");
    EXPECT_EQ(gService->messages,
              "Failed to parse service description file: " + torn + "\nCannot init system framework\n");
}

TEST_F(tServiceRunHostilePlaces, ALineTooLongForTheMemoryFailsOnlyItsPlugin) {
    const std::string large = world.describe("large.ini", "[Service]\nName=" + std::string(50'000'000, 'x'));
    world.describe("free.ini", world.calling("Free"));
    EXPECT_GT(allocations::refused(10'000'000, run), 0);
    EXPECT_EQ(outcome(), "Free 3\n");
    EXPECT_EQ(gService->messages,
              "Failed to parse service description file: " + large + "\nCannot init system framework\n");
}

}  // namespace
