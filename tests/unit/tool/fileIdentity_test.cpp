#include "tool/fileIdentity.h"

#include <gtest/gtest.h>

#include "tests/support/folder.h"

namespace {

class nFileIdentityTest : public testing::Test {
protected:
    /// Returns the identity of what has this name in the folder.
    [[nodiscard]] std::string of(const std::filesystem::path& name) const {
        return nFileIdentity::of(folder.utf8(name));
    }

    support::tFolder folder;
};

TEST_F(nFileIdentityTest, DiffersBetweenFiles) {
    folder.write("a/x", "same");
    folder.write("b/x", "same");
    EXPECT_NE(of("a/x"), "");
    EXPECT_NE(of("a/x"), of("b/x"));
    EXPECT_NE(of("a"), "") << "a folder";
    EXPECT_NE(of("a"), of("b"));
}

TEST_F(nFileIdentityTest, IsTheSameOnEveryWayToAFile) {
    folder.write(u"a/\u540D");
    folder.makeFolder("b");
    EXPECT_EQ(of(u"a/\u540D"), of(u"b/.././a/\u540D"));
    EXPECT_EQ(of("a"), of("a/"));
    EXPECT_EQ(of("a"), of("b/../a"));
}

TEST_F(nFileIdentityTest, IsThatOfTheFileToWhichAHardLinkLeads) {
    folder.write("a");
    create_hard_link(folder.path() / "a", folder.path() / "b");
    EXPECT_EQ(of("a"), of("b"));
}

TEST_F(nFileIdentityTest, IsEmptyIfThereIsNoFile) {
    EXPECT_EQ(of("none"), "");
    EXPECT_EQ(nFileIdentity::of(""), "");
}

}  // namespace
