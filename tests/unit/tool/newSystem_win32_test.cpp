#include <windows.h>
// windows.h first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/folder.h"
#include "tests/support/imports_win32.h"
#include "tests/unit/tool/toolRun.h"

namespace {

using support::tFolder;
using support::tToolRun;

class nNewSystemWin32 : public testing::Test {
protected:
    void TearDown() override { imports::ImportBase::restoreAll(); }

    [[nodiscard]] tToolRun create() const { return tToolRun({"new", "A", "--directory", folder.utf8()}); }

    /// Expects that the creation fails with the error of a system call, and leaves nothing.
    void expectNothing(const std::string& file) const {
        const tToolRun run = create();
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.error, testing::StartsWith("ziptra: Cannot create '" + folder.utf8(file) + "': "));
        EXPECT_THAT(run.error, testing::Not(testing::HasSubstr("could not be removed")));
        EXPECT_TRUE(is_empty(folder.path()));
    }

    tFolder folder;
};

TEST_F(nNewSystemWin32, ReportsAFolderThatCannotBeCreated) {
    imports::CreateDirectoryW.replace([](auto...) {
        imports::SetLastError.real(ERROR_ACCESS_DENIED);
        return FALSE;
    });
    expectNothing("A");
}

TEST_F(nNewSystemWin32, RemovesEverythingIfAFileCannotBeCreated) {
    imports::CreateFileW.replace([](const wchar_t* path, auto... rest) {
        if (!std::wstring(path).ends_with(L"README.md")) return imports::CreateFileW.real(path, rest...);
        imports::SetLastError.real(ERROR_DISK_FULL);
        return INVALID_HANDLE_VALUE;
    });
    expectNothing("A\\README.md");
}

TEST_F(nNewSystemWin32, RemovesAFileThatCannotBeWritten) {
    imports::CreateFileW.replace([](const wchar_t* path, DWORD, auto... rest) {
        return imports::CreateFileW.real(path, GENERIC_READ, rest...);
    });
    expectNothing("A\\.gitignore");
}

TEST_F(nNewSystemWin32, SaysThatTheFolderIsLeft) {
    imports::CreateFileW.replace([](auto...) {
        imports::SetLastError.real(ERROR_DISK_FULL);
        return INVALID_HANDLE_VALUE;
    });
    imports::RemoveDirectoryW.replace([](auto...) { return FALSE; });
    EXPECT_THAT(create().error, testing::EndsWith("; '" + folder.utf8("A") + "' could not be removed\n"));
    EXPECT_TRUE(folder.has("A"));
}

}  // namespace
