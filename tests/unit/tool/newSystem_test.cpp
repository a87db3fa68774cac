#include "tool/new/newSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/folder.h"

namespace {

using testing::IsEmpty;
using testing::Not;

class nNewSystem : public testing::Test {
protected:
    support::tFolder folder;
    nNew::tSystem system = nNew::thisSystem();
};

TEST_F(nNewSystem, CreatesAFolderOnlyIfThereIsNothing) {
    const std::filesystem::path name(u"插件");
    EXPECT_THAT(system.createFolder(folder.utf8(name)), IsEmpty());
    EXPECT_TRUE(is_directory(folder.path() / name));
    EXPECT_THAT(system.createFolder(folder.utf8(name)), Not(IsEmpty()));
    folder.write("file");
    EXPECT_THAT(system.createFolder(folder.utf8("file")), Not(IsEmpty()));
    EXPECT_THAT(system.createFolder(folder.utf8("none/folder")), Not(IsEmpty()));
}

TEST_F(nNewSystem, CreatesAFileWithExactlyTheseBytesOnlyIfThereIsNothing) {
    const std::filesystem::path name(u"插件.txt");
    const std::string content("one\ntwo\r\n\0\xFF", 11);
    EXPECT_THAT(system.createFile(folder.utf8(name), content), IsEmpty());
    EXPECT_EQ(folder.read(name), content);
    EXPECT_THAT(system.createFile(folder.utf8(name), "new"), Not(IsEmpty()));
    EXPECT_EQ(folder.read(name), content);
    EXPECT_THAT(system.createFile(folder.utf8("none/file"), "new"), Not(IsEmpty()));
}

TEST_F(nNewSystem, RemovesFilesAndEmptyFolders) {
    const std::string file = folder.write("folder/file");
    EXPECT_FALSE(system.remove(folder.utf8("folder")));
    EXPECT_TRUE(system.remove(file));
    EXPECT_TRUE(system.remove(folder.utf8("folder")));
    EXPECT_FALSE(system.remove(file));
    EXPECT_TRUE(is_empty(folder.path()));
}

TEST_F(nNewSystem, KnowsWhatExists) {
    EXPECT_TRUE(system.exists(folder.write("file")));
    EXPECT_TRUE(system.exists(folder.utf8()));
    EXPECT_FALSE(system.exists(folder.utf8("none")));
}

TEST_F(nNewSystem, KnowsTheFolderOfThisProgram) {
    const std::filesystem::path programs(std::u8string(system.programFolder.begin(), system.programFolder.end()));
    EXPECT_TRUE(exists(programs / "tool_tests") || exists(programs / "tool_tests.exe")) << system.programFolder;
}

}  // namespace
