#include "tool/check/fileNameOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tool/check/upperCase.h"

namespace {

using testing::ElementsAre;

TEST(nFileNameOrder, ComparesUpperCaseUnits) {
    std::vector<std::string> paths{"d/b.ini", "d/_.ini", "d/B1.ini", "d/a.ini", "d/C.ini"};
    nFileNameOrder::sort(paths);
    EXPECT_THAT(paths, ElementsAre("d/a.ini", "d/b.ini", "d/B1.ini", "d/C.ini", "d/_.ini"));
}

TEST(nFileNameOrder, IgnoresTheFolderAndKeepsFilesOfOneNameInTheirOrder) {
    std::vector<std::string> paths{"z/b.ini", "y/a.ini", "x/A.ini", "w/a.ini"};
    nFileNameOrder::sort(paths);
    EXPECT_THAT(paths, ElementsAre("y/a.ini", "x/A.ini", "w/a.ini", "z/b.ini"));
}

TEST(nFileNameOrder, ComparesUtf16NotCodePoints) {
    std::vector<std::string> paths{"\uFF21.ini", "\U0001F600.ini"};
    nFileNameOrder::sort(paths);
    EXPECT_THAT(paths, ElementsAre("\U0001F600.ini", "\uFF21.ini"));
}

TEST(nFileNameOrder, KnowsLettersOutsideAscii) {
    EXPECT_EQ(nFileNameOrder::sortKey("\u00E9\u03B1x"), u"\u00C9\u0391X");
    EXPECT_EQ(nFileNameOrder::sortKey("\xFF"), u"\uFFFD") << "not UTF-8";
}

TEST(nUpperCase, ChangesLettersOnly) {
    EXPECT_EQ(nUpperCase::toUpper(u'a'), u'A');
    EXPECT_EQ(nUpperCase::toUpper(u'z'), u'Z');
    EXPECT_EQ(nUpperCase::toUpper(u'`'), u'`');
    EXPECT_EQ(nUpperCase::toUpper(u'{'), u'{');
    EXPECT_EQ(nUpperCase::toUpper(u'A'), u'A');
    EXPECT_EQ(nUpperCase::toUpper(u'0'), u'0');
    EXPECT_EQ(nUpperCase::toUpper(u'\u00E9'), u'\u00C9');
    EXPECT_EQ(nUpperCase::toUpper(u'\u0436'), u'\u0416');
    EXPECT_EQ(nUpperCase::toUpper(u'\u540D'), u'\u540D');
    EXPECT_EQ(nUpperCase::toUpper(u'\xD83D'), u'\xD83D');
}

}  // namespace
