#include "source/statusFile.h"

#include <gtest/gtest.h>

#include "tests/support/folder.h"

namespace {

class statusFile : public testing::Test {
protected:
    static void write(const std::string& path, const char* text) {
        std::FILE* const file = nStatusFile::open(path);
        ASSERT_NE(file, nullptr);
        std::fputs(text, file);
        std::fclose(file);
    }

    support::tFolder folder;
};

TEST_F(statusFile, OpeningTruncatesAnExistingFile) {
    write(folder.write("a", "something longer"), "new");
    EXPECT_EQ(folder.read("a"), "new");
}

TEST_F(statusFile, OpeningFailsWithoutTheDirectory) {
    EXPECT_EQ(nStatusFile::open(folder.utf8("missing") + "\\a"), nullptr);
}

TEST_F(statusFile, RemovingReturnsWhetherThereWasAFile) {
    const std::string path = folder.write("a");
    EXPECT_TRUE(nStatusFile::remove(path));
    EXPECT_FALSE(exists(folder.path() / "a"));
    EXPECT_FALSE(nStatusFile::remove(path));
}

TEST_F(statusFile, RenamingMovesTheContent) {
    EXPECT_TRUE(nStatusFile::rename(folder.write("a", "text"), folder.utf8("b")));
    EXPECT_EQ(folder.read("b"), "text");
    EXPECT_FALSE(exists(folder.path() / "a"));
}

TEST_F(statusFile, RenamingNeverReplacesAFile) {
    EXPECT_FALSE(nStatusFile::rename(folder.write("a", "new"), folder.write("b", "old")));
    EXPECT_EQ(folder.read("a"), "new");
    EXPECT_EQ(folder.read("b"), "old");
}

TEST_F(statusFile, RenamingFailsWithoutAFile) { EXPECT_FALSE(nStatusFile::rename(folder.utf8("a"), folder.utf8("b"))); }

TEST_F(statusFile, AcceptNamesInAnyScript) {
    const std::filesystem::path from(u"中文 状态");
    const std::filesystem::path to(u"😀.txt");
    write(folder.utf8(from), "text");
    EXPECT_TRUE(nStatusFile::rename(folder.utf8(from), folder.utf8(to)));
    EXPECT_EQ(folder.read(to), "text");
    EXPECT_TRUE(nStatusFile::remove(folder.utf8(to)));
}

TEST_F(statusFile, TheTimeTextIsOneLineOf24Characters) {
    const std::string text = nStatusFile::currentTimeText();
    EXPECT_EQ(text.size(), 25U);
    EXPECT_EQ(text.find('\n'), 24U);
}

}  // namespace
