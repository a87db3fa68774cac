#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <boost/filesystem/exception.hpp>

#include "source/nPluginData.h"
#include "tests/support/exceptions.h"
#include "tests/support/folder.h"

namespace {

/// Rules that need a file system with links and limits.
class nPluginDataLinks : public testing::Test {
protected:
    std::vector<std::string> listed(const std::string& name = ".") {
        std::vector<std::string> files;
        nPluginData::listDescriptionFiles((folder.path() / name).string(), ".ini", files);
        for (std::string& file : files) file = std::filesystem::path(file).filename();
        return files;
    }

    support::tFolder folder;
};

TEST_F(nPluginDataLinks, ListsLinksToFiles) {
    folder.write("a.txt");
    std::filesystem::create_symlink("a.txt", folder.path() / "link.ini");
    EXPECT_THAT(listed(), testing::ElementsAre("link.ini"));
}

TEST_F(nPluginDataLinks, SkipsLinksToNothingToFoldersAndToThemselves) {
    folder.makeFolder("inner");
    std::filesystem::create_symlink("missing", folder.path() / "nothing.ini");
    std::filesystem::create_symlink("inner", folder.path() / "folder.ini");
    std::filesystem::create_symlink("itself.ini", folder.path() / "itself.ini");
    folder.write("a.ini");
    EXPECT_THAT(listed(), testing::ElementsAre("a.ini"));
}

TEST_F(nPluginDataLinks, SkipsPipes) {
    ASSERT_EQ(mkfifo((folder.path() / "pipe.ini").c_str(), 0600), 0);
    EXPECT_THAT(listed(), testing::IsEmpty());
}

TEST_F(nPluginDataLinks, ListsADirectoryThroughALink) {
    folder.makeFolder("inner");
    folder.write("inner/a.ini");
    std::filesystem::create_directory_symlink("inner", folder.path() / "link");
    EXPECT_THAT(listed("link"), testing::ElementsAre("a.ini"));
}

TEST_F(nPluginDataLinks, ThrowsIfTheDirectorysStatusIsNotAvailable) {
    std::filesystem::create_symlink("itself", folder.path() / "itself");
    EXPECT_THAT(support::caughtReport([&] { listed("itself"); }), testing::StartsWith("-52003 "));
}

TEST_F(nPluginDataLinks, ThrowsBoostsExceptionIfTheDirectoryCannotBeRead) {
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none{0, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_THROW(listed(), boost::filesystem::filesystem_error);
    setrlimit(RLIMIT_NOFILE, &limit);
}

TEST_F(nPluginDataLinks, KeepsBlanksAndBackslashesInNames) {
    folder.write("a \\b .ini");
    EXPECT_THAT(listed(), testing::ElementsAre("a \\b .ini"));
}

TEST(nPluginData, RequiresIsTheLow32BitsOfALargerNumber) {
    const support::tFolder folder;
    const std::pair<const char*, std::uint32_t> rows[] = {
        {"4294967296", 0}, {"4294967297", 1}, {"18446744073709551616", 4294967295}, {"-4294967296", 0}};
    for (const auto& [value, expected] : rows) {
        tPluginDescription record;
        nPluginData::readDescription(folder.write("a.ini", std::string("[Service]\nRequires=") + value), record);
        EXPECT_EQ(record.requiresMask, expected) << value;
    }
}

TEST(nPluginData, ReportsAnUnreadableFileWithTheParsersCode) {
    const support::tFolder folder;
    const std::string path = folder.utf8(folder.makeFolder("a.ini"));
    tPluginDescription record;
    EXPECT_THAT(support::caughtReport([&] { nPluginData::readDescription(path, record); }),
                testing::StartsWith("-5002 "));
}

}  // namespace
