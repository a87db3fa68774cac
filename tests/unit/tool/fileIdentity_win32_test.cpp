#include <windows.h>
// windows.h first.
#include <gtest/gtest.h>

#include "tests/support/folder.h"
#include "tool/fileIdentity.h"

namespace {

TEST(nFileIdentityWin32, IsTheSameWhateverTheCaseOfLettersAndThePrefix) {
    const support::tFolder folder;
    const std::string file = folder.write("x.ini");
    EXPECT_EQ(nFileIdentity::of(folder.utf8("X.INI")), nFileIdentity::of(file));
    EXPECT_EQ(nFileIdentity::of(R"(\\?\)" + file), nFileIdentity::of(file));
}

TEST(nFileIdentityWin32, IsKnownWhileAnotherProgramHasTheFileToItself) {
    const support::tFolder folder;
    const std::string file = folder.write("x.ini");
    const std::string identity = nFileIdentity::of(file);
    const HANDLE owner =
        CreateFileW((folder.path() / "x.ini").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(owner, INVALID_HANDLE_VALUE);
    EXPECT_EQ(nFileIdentity::of(file), identity);
    CloseHandle(owner);
}

}  // namespace
