#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/folder.h"
#include "tool/pe/libraryFile.h"

namespace nPe {
namespace {

std::string reasonOfFile(const std::string& path) {
    const auto content = readFile(path);
    const auto* const unreadable = std::get_if<tUnreadable>(&content);
    return unreadable == nullptr ? std::string() : unreadable->reason;
}

TEST(nPeLibraryFilePosix, IsUnreadableIfItIsAFolderOrADevice) {
    const support::tFolder folder;
    EXPECT_EQ(reasonOfFile(folder.utf8()), "it is not a file");
    EXPECT_EQ(reasonOfFile("/dev/zero"), "it is not a file");
}

TEST(nPeLibraryFilePosix, IsUnreadableIfItIsAPipeToWhichNobodyWrites) {
    const support::tFolder folder;
    const std::string path = folder.utf8("pipe.dll");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(reasonOfFile(path), "it is not a file");
}

TEST(nPeLibraryFilePosix, MayBeShorterThanTheSystemSays) {
    // The system gives files about itself the size of a page.
    const char* const path = "/sys/kernel/mm/transparent_hugepage/enabled";
    struct stat status {};
    if (stat(path, &status) != 0) GTEST_SKIP() << "there is no " << path;
    EXPECT_EQ(reasonOfFile(path), "it has no MZ signature");
}

}  // namespace
}  // namespace nPe
