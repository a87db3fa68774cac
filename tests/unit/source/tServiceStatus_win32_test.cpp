#include <gtest/gtest.h>

#include <string>

#include "source/tService.h"
#include "tests/support/exceptions.h"
#include "tests/support/folder.h"
#include "tests/support/imports_win32.h"
#include "tests/support/serviceWorld.h"
#include "tests/support/statusFailures.h"

namespace {

/// Returns the failure of writing the file "s".
std::string failureOf(const support::tFolder& folder, const std::string& text) {
    return support::caughtReport([&] { WriteStatusFile(folder.utf8(), "s", text); });
}

TEST(tServiceStatusOnDisk, HasWindowsLineEndsAndNoDoubledCarriageReturns) {
    const support::tFolder folder;
    WriteStatusFile(folder.utf8(), "s", "one\r\ntwo\n\n");
    EXPECT_EQ(folder.read("s"), "one\r\ntwo\r\n\r\n");
}

TEST(tServiceStatusOnDisk, IsOpenedAsTextAndSharedThenDeletedThenRenamed) {
    const support::tFolder folder;
    std::wstring calls;
    imports::_wfsopen.replace([&](const wchar_t* path, const wchar_t* mode, int sharing) {
        calls += std::wstring(L"open ") + mode + L" " + std::to_wstring(sharing) + L"\n";
        EXPECT_EQ(path, (folder.path() / ".s.tmp").wstring());
        return imports::_wfsopen.real(path, mode, sharing);
    });
    imports::_wremove.replace([&](const wchar_t* path) {
        calls += L"remove\n";
        EXPECT_EQ(path, (folder.path() / "s").wstring());
        return imports::_wremove.real(path);
    });
    imports::_wrename.replace([&](const wchar_t* from, const wchar_t* to) {
        calls += L"rename\n";
        EXPECT_EQ(from, (folder.path() / ".s.tmp").wstring());
        EXPECT_EQ(to, (folder.path() / "s").wstring());
        return imports::_wrename.real(from, to);
    });
    WriteStatusFile(folder.utf8(), "s", "text\n");
    EXPECT_EQ(calls, L"open w 64\nremove\nrename\n");
}

TEST(tServiceStatusOnDisk, IsNotOpenedWhenItsPathCannotBeConverted) {
    const support::tFolder folder;
    bool opened = false;
    imports::_wfsopen.replace([&](auto...) -> FILE* {
        opened = true;
        return nullptr;
    });
    imports::MultiByteToWideChar.replace([](auto...) { return 0; });
    EXPECT_EQ(failureOf(folder, "text"), support::openFailed);
    EXPECT_FALSE(opened);
}

TEST(tServiceStatusOnDisk, KeepsTheOldFileIfTheNewOneIsTruncated) {
    const support::tFolder folder;
    folder.write("s", "old");
    std::size_t closed = 0;
    imports::fclose.replace([&](FILE* file) {
        ++closed;
        return imports::fclose.real(file);
    });
    imports::fwrite.replace([](const void* data, std::size_t size, std::size_t count, FILE* file) {
        return imports::fwrite.real(data, size, count - 1, file);
    });
    EXPECT_EQ(failureOf(folder, "something new"), support::writeFailed);
    EXPECT_EQ(closed, 1U);
    EXPECT_EQ(folder.read("s"), "old");
}

TEST(tServiceStatusOnDisk, WritesTheTextWithOneCall) {
    const support::tFolder folder;
    int calls = 0;
    imports::fwrite.replace([&](const void* data, std::size_t size, std::size_t count, FILE* file) {
        ++calls;
        EXPECT_EQ(size * count, 100'000U);
        return imports::fwrite.real(data, size, count, file);
    });
    EXPECT_EQ(failureOf(folder, std::string(100'000, 'x')), "nothing");
    EXPECT_EQ(calls, 1);
}

TEST(tServiceStatusOnDisk, KeepsTheOldFileIfTheDiskIsFullOnClosing) {
    const support::tFolder folder;
    folder.write("s", "old");
    imports::fclose.replace([](FILE* file) {
        imports::fclose.real(file);
        return EOF;
    });
    EXPECT_EQ(failureOf(folder, "new"), support::writeFailed);
    EXPECT_EQ(folder.read("s"), "old");
}

TEST(tServiceStatusOnDisk, IsWrittenIfThereIsNothingToDelete) {
    const support::tFolder folder;
    imports::_wremove.replace([](const wchar_t*) { return -1; });
    EXPECT_EQ(failureOf(folder, "new"), "nothing");
    EXPECT_EQ(folder.read("s"), "new");
}

TEST(tServiceStatusOnDisk, IsLeftAsACompleteTemporaryFileWhenTheRenameFails) {
    const support::tFolder folder;
    folder.write("s", "old");
    imports::_wrename.replace([](auto...) { return -1; });
    EXPECT_EQ(failureOf(folder, "new"), support::renameFailed);
    EXPECT_FALSE(exists(folder.path() / "s"));
    EXPECT_EQ(folder.read(".s.tmp"), "new");
}

TEST(tServiceStatusOnWindows, SurvivesATimeThatTheRuntimeCannotFormat) {
    const support::tServiceWorld world;
    imports::_ctime64.replace([](const __time64_t*) -> char* { return nullptr; });
    startService();
    EXPECT_NE(support::read(world.statusFolder / "zuZiptraRemoteService.status").find("Updated: \r\nAllowed: "),
              std::string::npos);
}

TEST(tServiceStatusOnWindows, ShowsTheTimeThatTheRuntimeReturns) {
    const support::tServiceWorld world;
    imports::_time64.replace([](__time64_t*) -> __time64_t { return 1'794'799'600; });
    imports::_ctime64.replace([](const __time64_t* now) -> char* {
        static char text[] = "Mon Nov 16 03:26:40 2026\n";
        EXPECT_EQ(*now, 1'794'799'600);
        return text;
    });
    startService();
    EXPECT_NE(support::read(world.statusFolder / "zuZiptraRemoteService.status")
                  .find("Updated: Mon Nov 16 03:26:40 2026\r\n"),
              std::string::npos);
}

TEST(tServiceStatusOnWindows, DoesNotPassOnAFailedWrite) {
    const support::tServiceWorld world;
    startService();
    const std::string before = support::read(world.statusFolder / "zuZiptraRemoteService.status");
    gService->allowedMask = 0;
    imports::fwrite.replace([](auto...) -> std::size_t { return 0; });
    EXPECT_NO_THROW(WriteStatus(*gService));
    EXPECT_EQ(support::read(world.statusFolder / "zuZiptraRemoteService.status"), before);
}

/// Writes the status file while an exception propagates. Returns how many files were opened for that.
int opensWhileAnExceptionPropagates() {
    static int opens;  // stopping the service also opens a file, after this function has returned
    opens = 0;
    imports::_wfsopen.replace([](auto... arguments) {
        ++opens;
        return imports::_wfsopen.real(arguments...);
    });
    support::whileUnwinding([] { WriteStatus(*gService); });
    return opens;
}

TEST(tServiceStatusOnWindows, IsWrittenEvenWhileAnExceptionPropagates) {
    const support::tServiceWorld world;
    startService();
    world.removeStatus();
    EXPECT_EQ(opensWhileAnExceptionPropagates(), 1);
    EXPECT_TRUE(exists(world.statusFolder / "zuZiptraRemoteService.status"));
}

// The failure cannot be thrown then, and the folder must not be used: anyone may have created it at the drive's root.
TEST(tServiceStatusOnWindows, IsNotWrittenIfTheFolderIsUnknownWhileAnExceptionPropagates) {
    support::tServiceWorld world;
    startService();
    world.places.appDataFolder.reset();
    EXPECT_EQ(opensWhileAnExceptionPropagates(), 0);
}

TEST(tServiceStatusOnWindows, PassesOnNonStandardExceptions) {
    const support::tServiceWorld world;
    startService();
    imports::_time64.replace([](__time64_t*) -> __time64_t { throw 42; });
    EXPECT_THROW(WriteStatus(*gService), int);
    imports::_time64.replace([](__time64_t* now) { return imports::_time64.real(now); });
}

}  // namespace
