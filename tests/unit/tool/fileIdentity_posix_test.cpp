#include <gtest/gtest.h>

#include "tests/support/folder.h"
#include "tool/fileIdentity.h"

namespace {

TEST(nFileIdentityPosix, IsThatOfTheFileToWhichALinkLeads) {
    const support::tFolder folder;
    folder.write("a/x");
    create_symlink(folder.path() / "a", folder.path() / "b");
    create_symlink(folder.path() / "none", folder.path() / "c");
    EXPECT_EQ(nFileIdentity::of(folder.utf8("b/x")), nFileIdentity::of(folder.utf8("a/x")));
    EXPECT_EQ(nFileIdentity::of(folder.utf8("c")), "");
}

}  // namespace
