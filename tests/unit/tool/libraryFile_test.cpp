#include "tool/pe/libraryFile.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/folder.h"
#include "tests/support/peFile.h"
#include "tests/unit/tool/peHelpers.h"

namespace nPe {
namespace {

std::string reasonOfFile(const std::string& path) {
    const auto content = readFile(path);
    const auto* const unreadable = std::get_if<tUnreadable>(&content);
    return unreadable == nullptr ? std::string() : unreadable->reason;
}

std::string exporting(const std::string& name) {
    support::tPeFile file;
    file.exports = named({name});
    return file.bytes();
}

/// Makes the file longer without writing anything.
void extend(const support::tFolder& folder, const char* name, std::uint64_t size) {
    std::filesystem::resize_file(folder.path() / name, size);
}

TEST(nPeLibraryFile, IsRead) {
    const support::tFolder folder;
    const std::string path = folder.write(u"größe 计划.dll", exporting("Start"));
    const auto content = readFile(path);
    ASSERT_TRUE(std::holds_alternative<tLibrary>(content));
    EXPECT_EQ(textsOf(std::get<tLibrary>(content).exports), std::vector<std::string>{"Start#1"});
}

TEST(nPeLibraryFile, IsUnreadableIfItIsNotThere) {
    const support::tFolder folder;
    EXPECT_EQ(reasonOfFile(folder.utf8("none.dll")), "it cannot be opened");
    EXPECT_EQ(reasonOfFile(""), "it cannot be opened");
}

TEST(nPeLibraryFile, IsUnreadableIfItIsNoLibrary) {
    const support::tFolder folder;
    EXPECT_EQ(reasonOfFile(folder.write("empty.dll")), "it is empty");
    EXPECT_EQ(reasonOfFile(folder.write("text.dll", "text")), "it has no MZ signature");
}

TEST(nPeLibraryFile, IsReadWhateverItsSize) {
    const support::tFolder folder;
    const std::string path = folder.write("a.dll", exporting("Start"));
    for (const std::uint64_t size : {largestBuffer, largestBuffer + 1, largestLibrary}) {
        extend(folder, "a.dll", size);
        const auto content = readFile(path);
        ASSERT_TRUE(std::holds_alternative<tLibrary>(content)) << size;
        EXPECT_EQ(std::get<tLibrary>(content).exports.size(), 1U);
    }
}

TEST(nPeLibraryFile, IsUnreadableIfItIsLargerThanAnyLibrary) {
    const support::tFolder folder;
    const std::string path = folder.write("a.dll", exporting("Start"));
    extend(folder, "a.dll", largestLibrary + 1);
    EXPECT_EQ(reasonOfFile(path), "it is larger than 4 GB");
}

}  // namespace
}  // namespace nPe
