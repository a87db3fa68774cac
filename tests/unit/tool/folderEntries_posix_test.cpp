#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/support/folder.h"
#include "tool/folderEntries.h"

namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// Returns the names of the files or of the other entries.
std::vector<std::string> namesIn(const support::tFolder& folder, bool files) {
    std::vector<std::string> names;
    const auto entries = nFolderEntries::list(folder.utf8());
    for (const auto& [name, isFile] : entries.value()) {
        if (isFile == files) names.push_back(name);
    }
    return names;
}

TEST(nFolderEntries, AreFilesAndOthers) {
    const support::tFolder folder;
    EXPECT_THAT(namesIn(folder, true), IsEmpty());
    EXPECT_THAT(namesIn(folder, false), IsEmpty());
    folder.write("a.ini");
    folder.write("größe");
    folder.makeFolder("sub");
    mkfifo(folder.utf8("pipe").c_str(), 0600);
    EXPECT_THAT(namesIn(folder, true), UnorderedElementsAre("a.ini", "größe"));
    EXPECT_THAT(namesIn(folder, false), UnorderedElementsAre("sub", "pipe"));
}

TEST(nFolderEntries, AreFilesIfTheyLeadToOne) {
    const support::tFolder folder;
    const support::tFolder other;
    other.write("file");
    std::filesystem::create_symlink(other.path() / "file", folder.path() / "toFile");
    std::filesystem::create_symlink(other.path(), folder.path() / "toFolder");
    std::filesystem::create_symlink(other.path() / "none", folder.path() / "toNothing");
    EXPECT_THAT(namesIn(folder, true), UnorderedElementsAre("toFile"));
    EXPECT_THAT(namesIn(folder, false), UnorderedElementsAre("toFolder", "toNothing"));
}

TEST(nFolderEntries, AreNotAvailableWithoutAFolder) {
    const support::tFolder folder;
    folder.write("file");
    EXPECT_FALSE(nFolderEntries::list(folder.utf8("none")));
    EXPECT_FALSE(nFolderEntries::list(folder.utf8("file")));
}

}  // namespace
