#include <windows.h>
// windows.h first.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "tests/support/folder.h"
#include "tests/unit/tool/ownProcess_win32.h"
#include "tool/outputFile.h"

namespace {

TEST(nOutputFileWin32, WritesToADeviceWithoutReplacingIt) {
    EXPECT_NO_THROW(nOutputFile::replace("NUL", "text"));
    EXPECT_NO_THROW(nOutputFile::replace("\\\\.\\NUL", "text"));
}

TEST(nOutputFileWin32, KeepsAFileThatMustNotBeReplaced) {
    const support::tFolder folder;
    const std::string path = folder.write("a", "old");
    const HANDLE reader =
        CreateFileW((folder.path() / "a").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    EXPECT_THROW(nOutputFile::replace(path, "new"), nOutputFile::tCannotWrite);
    CloseHandle(reader);
    EXPECT_EQ(folder.read("a"), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(nOutputFileWin32, LeavesNothingHalfWrittenWhenItIsInterrupted) {
    constexpr const char* variable = "ZIPTRA_TEST_FILE";
    if (support::tOwnProcess::isThis()) {
        char path[MAX_PATH];
        GetEnvironmentVariableA(variable, path, MAX_PATH);
        nOutputFile::replace(path, std::string(256U << 20U, 'a'));
        return;
    }
    const support::tFolder folder;
    const auto files = [&folder] { return std::distance(std::filesystem::directory_iterator(folder.path()), {}); };
    // An empty temporary file may not be marked for deletion yet.
    const auto isWriting = [&folder] {
        const auto hasContent = [](const std::filesystem::directory_entry& file) {
            std::error_code error;
            return file.path().filename() != "a" && file.file_size(error) > 0 && !error;
        };
        return std::ranges::any_of(std::filesystem::directory_iterator(folder.path()), hasContent);
    };
    SetEnvironmentVariableA(variable, folder.write("a", "old").c_str());
    const support::tOwnProcess process(L"nOutputFileWin32.LeavesNothingHalfWrittenWhenItIsInterrupted");
    for (int waits = 0; !isWriting() && waits < 10'000; ++waits) Sleep(1);
    process.terminate();
    EXPECT_EQ(process.exitCode(), 1U) << "it was not done yet";
    EXPECT_EQ(files(), 1);
    EXPECT_EQ(folder.read("a"), "old");
}

}  // namespace
