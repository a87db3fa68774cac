#include <gtest/gtest.h>

#include <cwchar>
#include <filesystem>

#include "stdpath/folders.h"
#include "tests/support/imports_win32.h"

namespace {

TEST(nStdPathFolders, AreThoseOfThisProgramAndOfTheSystem) {
    EXPECT_TRUE(exists(std::filesystem::path(nStdPath::applicationFolder()) / "unit_tests.exe"));
    EXPECT_TRUE(exists(std::filesystem::path(nStdPath::systemFolder()) / "kernel32.dll"));
}

TEST(nStdPathFolders, AreEmptyIfTheSystemCallFails) {
    imports::GetModuleFileNameW.replace([](auto...) { return DWORD{0}; });
    imports::GetSystemDirectoryW.replace([](auto...) { return UINT{0}; });
    EXPECT_EQ(nStdPath::applicationFolder(), L"");
    EXPECT_EQ(nStdPath::systemFolder(), L"");
}

TEST(nStdPathFolders, AreEmptyIfThePathIsTruncated) {
    imports::GetModuleFileNameW.replace([](HMODULE, wchar_t* path, DWORD size) {
        std::wmemset(path, L'\\', size);
        return size;
    });
    imports::GetSystemDirectoryW.replace([](wchar_t*, UINT size) { return size + 1; });
    EXPECT_EQ(nStdPath::applicationFolder(), L"");
    EXPECT_EQ(nStdPath::systemFolder(), L"");
}

}  // namespace
