#include "tool/check/upperCase.h"

#include <gtest/gtest.h>

namespace {

using nUpperCase::toUpper;

TEST(nUpperCase, RaisesTheLettersOfAscii) {
    EXPECT_EQ(toUpper(u'a'), u'A');
    EXPECT_EQ(toUpper(u'z'), u'Z');
}

TEST(nUpperCase, RaisesLettersBeyondAscii) {
    EXPECT_EQ(toUpper(u'\u00E9'), u'\u00C9');
    EXPECT_EQ(toUpper(u'\u044F'), u'\u042F');
}

TEST(nUpperCase, LeavesEverythingElseAsItIs) {
    for (const char16_t unit : {u'A', u'@', u'[', u'`', u'{', u'1', u'\u4E2D', u'\xD83D', u'\xFFFF'}) {
        EXPECT_EQ(toUpper(unit), unit);
    }
}

}  // namespace
