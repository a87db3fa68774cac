#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>

#include "tests/support/folder.h"
#include "tool/fileDescriptor.h"

namespace {

/// Returns the beginning of the file, or "-" if it cannot be opened.
std::string beginningOf(const std::string& path) {
    const tFileDescriptor file(path);
    if (file.number() < 0) return "-";
    std::array<char, 100> bytes{};
    const ssize_t count = read(file.number(), bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(count)};
}

TEST(tFileDescriptor, IsOfTheFileInItsOwnFolder) {
    const support::tFolder folder;
    folder.write("a/file", "of a");
    folder.write("a/other", "other of a");
    folder.write("b/file", "of b");
    EXPECT_EQ(beginningOf(folder.utf8("a/file")), "of a");
    EXPECT_EQ(beginningOf(folder.utf8("a/other")), "other of a");
    EXPECT_EQ(beginningOf(folder.utf8("b/file")), "of b");
    EXPECT_EQ(beginningOf(folder.utf8("a/file")), "of a");
    EXPECT_EQ(beginningOf(folder.utf8("a/none")), "-");
    EXPECT_EQ(beginningOf(folder.utf8("none/file")), "-");
}

TEST(tFileDescriptor, FindsAFolderThatHasReplacedAnother) {
    const support::tFolder folder;
    folder.write("a/file", "earlier");
    EXPECT_EQ(beginningOf(folder.utf8("a/file")), "earlier");
    std::filesystem::remove_all(folder.path() / "a");
    EXPECT_EQ(beginningOf(folder.utf8("a/file")), "-");
    folder.write("a/file", "later");
    EXPECT_EQ(beginningOf(folder.utf8("a/file")), "later");
}

TEST(tFileDescriptor, NeedsNoFolderInThePath) {
    const support::tFolder folder;
    folder.write("file", "text");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    const std::string text = beginningOf("file");
    std::filesystem::current_path(before);
    EXPECT_EQ(text, "text");
}

TEST(tFileDescriptor, DoesNotWaitForTheOtherEndOfAPipe) {
    const support::tFolder folder;
    ASSERT_EQ(mkfifo(folder.utf8("pipe").c_str(), 0600), 0);
    EXPECT_EQ(beginningOf(folder.utf8("pipe")), "");
}

}  // namespace
