#include "stdpath/path.h"

#include <gtest/gtest.h>

#include <boost/filesystem/operations.hpp>

#include "tests/support/folder.h"

namespace {

std::string text(std::u8string_view utf8) { return {utf8.begin(), utf8.end()}; }

TEST(nStdPathPaths, ReferToFilesWithNamesInAnyScript) {
    const support::tFolder folder;
    for (const std::u16string name : {u"plain.ini", u"with two blanks.ini", u"größe.ini", u"计划.ini", u"🚀.ini"}) {
        const std::string utf8 = folder.write(name, "x");
        EXPECT_TRUE(boost::filesystem::is_regular_file(nStdPath::pathFromUtf8(utf8))) << utf8;
    }
}

TEST(nStdPathPaths, SurviveTheRoundTrip) {
    for (const std::u8string_view utf8 :
         {u8"", u8"relative", u8"C:\\Daten\\größe", u8"//server/计划/🚀.ini", u8" a b "}) {
        EXPECT_EQ(nStdPath::pathToUtf8(nStdPath::pathFromUtf8(text(utf8))), text(utf8));
    }
}

TEST(nStdPathPaths, FoundInAFolderConvertToTheirUtf8Names) {
    const support::tFolder folder;
    const std::string utf8 = folder.write(u"计划 🚀.ini");
    const boost::filesystem::directory_iterator found(nStdPath::pathFromUtf8(folder.utf8()));
    ASSERT_NE(found, boost::filesystem::directory_iterator());
    EXPECT_EQ(nStdPath::pathToUtf8(found->path()), utf8);
}

TEST(nStdPathPaths, ConvertToTheSameTextAsAWideLiteral) {
    EXPECT_EQ(nStdPath::widePathFromUtf8(""), L"");
    EXPECT_EQ(nStdPath::widePathFromUtf8(text(u8"C:\\größe\\计划 🚀.ini")), L"C:\\größe\\计划 🚀.ini");
}

}  // namespace
