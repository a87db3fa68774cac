#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "err/Exception.h"
#include "source/tService.h"
#include "tests/support/folder.h"
#include "tests/support/imports_win32.h"
#include "tests/support/serviceWorld.h"

namespace {

std::string bytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::int32_t codeOf(const support::tFolder& folder, const std::string& text) {
    try {
        WriteStatusFile(folder.utf8(), "s", text);
        return 0;
    } catch (const zuerr::Exception& exception) {
        return exception.record.code;
    }
}

TEST(StatusFileOnDisk, HasWindowsLineEndsAndNoDoubledCarriageReturns) {
    const support::tFolder folder;
    WriteStatusFile(folder.utf8(), "s", "one\r\ntwo\n\n");
    EXPECT_EQ(bytes(folder.path() / "s"), "one\r\ntwo\r\n\r\n");
}

TEST(StatusFileOnDisk, IsOpenedForTextWithSharingThatDeniesNobodyThenDeletedThenRenamed) {
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

TEST(StatusFileOnDisk, GoesByPathsThatWereConvertedFromUtf8) {
    const support::tFolder folder;
    int conversions = 0;
    imports::MultiByteToWideChar.replace([&](UINT page, DWORD flags, LPCCH text, int size, LPWSTR wide, int room) {
        EXPECT_EQ(page, 65001U);
        ++conversions;
        return imports::MultiByteToWideChar.real(page, flags, text, size, wide, room);
    });
    EXPECT_EQ(codeOf(folder, "text"), 0);
    EXPECT_GE(conversions, 4);
}

TEST(StatusFileOnDisk, IsNotOpenedWhenItsPathCannotBeConverted) {
    const support::tFolder folder;
    bool opened = false;
    imports::_wfsopen.replace([&](auto...) -> FILE* {
        opened = true;
        return nullptr;
    });
    imports::MultiByteToWideChar.replace([](auto...) { return 0; });
    EXPECT_EQ(codeOf(folder, "text"), -52026);
    EXPECT_FALSE(opened);
}

TEST(StatusFileOnDisk, KeepsTheOldFileWhenTheNewOneIsCutShort) {
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
    EXPECT_EQ(codeOf(folder, "something new"), -52008);
    EXPECT_EQ(closed, 1U);
    EXPECT_EQ(bytes(folder.path() / "s"), "old");
}

TEST(StatusFileOnDisk, WritesTheTextWithOneCall) {
    const support::tFolder folder;
    int calls = 0;
    imports::fwrite.replace([&](const void* data, std::size_t size, std::size_t count, FILE* file) {
        ++calls;
        EXPECT_EQ(size * count, 100'000U);
        return imports::fwrite.real(data, size, count, file);
    });
    EXPECT_EQ(codeOf(folder, std::string(100'000, 'x')), 0);
    EXPECT_EQ(calls, 1);
}

TEST(StatusFileOnDisk, KeepsTheOldFileWhenTheDiskIsFoundFullAtTheClose) {
    const support::tFolder folder;
    folder.write("s", "old");
    imports::fclose.replace([](FILE* file) {
        imports::fclose.real(file);
        return EOF;
    });
    EXPECT_EQ(codeOf(folder, "new"), -52008);
    EXPECT_EQ(bytes(folder.path() / "s"), "old");
}

TEST(StatusFileOnDisk, GoesOnWhenThereIsNothingToDelete) {
    const support::tFolder folder;
    imports::_wremove.replace([](const wchar_t*) { return -1; });
    EXPECT_EQ(codeOf(folder, "new"), 0);
    EXPECT_EQ(bytes(folder.path() / "s"), "new");
}

TEST(StatusFileOnDisk, IsLeftAsACompleteTemporaryFileWhenTheRenameFails) {
    const support::tFolder folder;
    folder.write("s", "old");
    imports::_wrename.replace([](auto...) { return -1; });
    EXPECT_EQ(codeOf(folder, "new"), -52026);
    EXPECT_FALSE(exists(folder.path() / "s"));
    EXPECT_EQ(bytes(folder.path() / ".s.tmp"), "new");
}

TEST(StatusFileOnDisk, IsSeenWholeOrNotAtAllByAReaderBesideTheWriter) {
    const support::tFolder folder;
    std::atomic<bool> done = false;
    int torn = 0;
    std::thread reader([&] {
        while (!done) {
            const std::string seen = bytes(folder.path() / "s");
            // Every text is one letter, so often.
            const bool whole = seen.empty() || (seen.size() == 20'000 && seen.find_first_not_of(seen[0]) == seen.npos);
            torn += whole ? 0 : 1;
        }
    });
    for (int i = 0; i < 200; ++i) codeOf(folder, std::string(20'000, static_cast<char>('a' + i % 26)));
    done = true;
    reader.join();
    EXPECT_EQ(torn, 0);
}

TEST(StatusTextOnWindows, SurvivesATimeThatTheRuntimeHasNoTextFor) {
    const support::tServiceWorld world;
    imports::_ctime64.replace([](const __time64_t*) -> char* { return nullptr; });
    startService();
    EXPECT_NE(bytes(world.statusFolder / "zuZiptraRemoteService.status").find("Updated: \r\nAllowed: "),
              std::string::npos);
}

TEST(StatusTextOnWindows, ShowsTheTimeThatTheRuntimeGives) {
    const support::tServiceWorld world;
    imports::_time64.replace([](__time64_t*) -> __time64_t { return 1'794'799'600; });
    imports::_ctime64.replace([](const __time64_t* now) -> char* {
        static char text[] = "Mon Nov 16 03:26:40 2026\n";
        EXPECT_EQ(*now, 1'794'799'600);
        return text;
    });
    startService();
    EXPECT_NE(bytes(world.statusFolder / "zuZiptraRemoteService.status").find("Updated: Mon Nov 16 03:26:40 2026\r\n"),
              std::string::npos);
}

TEST(StatusTextOnWindows, LetsExceptionsThatAreNoStandardOnesPass) {
    const support::tServiceWorld world;
    startService();
    imports::_time64.replace([](__time64_t*) -> __time64_t { throw 42; });
    EXPECT_THROW(WriteStatus(*gService), int);
    imports::ImportBase::restoreAll();
}

}  // namespace
