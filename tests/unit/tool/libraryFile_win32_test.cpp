#include <gtest/gtest.h>
#include <windows.h>

#include "tests/support/folder.h"
#include "tests/support/peFile.h"
#include "tool/pe/libraryFile.h"

namespace nPe {
namespace {

std::string reasonOfFile(const std::string& path) {
    const auto content = readFile(path);
    const auto* const unreadable = std::get_if<tUnreadable>(&content);
    return unreadable == nullptr ? std::string() : unreadable->reason;
}

TEST(nPeLibraryFileWin32, IsUnreadableIfItIsAFolder) {
    const support::tFolder folder;
    EXPECT_EQ(reasonOfFile(folder.utf8()), "it cannot be opened");
}

TEST(nPeLibraryFileWin32, IsUnreadableIfItIsADevice) { EXPECT_EQ(reasonOfFile("NUL"), "it is not a file"); }

TEST(nPeLibraryFileWin32, IsUnreadableWhileAnotherProgramHasItForItself) {
    const support::tFolder folder;
    const std::string path = folder.write("a.dll", support::tPeFile().bytes());
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(reasonOfFile(path), "it cannot be opened");
    CloseHandle(file);
    EXPECT_EQ(reasonOfFile(path), "");
}

TEST(nPeLibraryFileWin32, IsReadWhileAnotherProgramHasItOpen) {
    const support::tFolder folder;
    const std::string path = folder.write("a.dll", support::tPeFile().bytes());
    constexpr DWORD all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file =
        CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, all, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(reasonOfFile(path), "");
    CloseHandle(file);
}

}  // namespace
}  // namespace nPe
