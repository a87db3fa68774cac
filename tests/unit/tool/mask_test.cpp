#include "tool/check/mask.h"

#include <gtest/gtest.h>

namespace {

TEST(nMask, IsReadAsDecimalOrAfter0xAsHexadecimal) {
    EXPECT_EQ(nMask::read("0"), 0U);
    EXPECT_EQ(nMask::read("10"), 10U);
    EXPECT_EQ(nMask::read("010"), 10U);
    EXPECT_EQ(nMask::read("4294967295"), 0xFFFFFFFFU);
    EXPECT_EQ(nMask::read("0x10"), 16U);
    EXPECT_EQ(nMask::read("0XFFFFfffd"), 0xFFFFFFFDU);
}

TEST(nMask, IsNotReadFromAnythingElse) {
    for (const char* text :
         {"", "0x", "x1", "1x", " 1", "1 ", "-1", "+1", "4294967296", "0x100000000", "0x-1", "1,2"}) {
        EXPECT_EQ(nMask::read(text), std::nullopt) << text;
    }
}

TEST(nMask, IsWrittenAsTheStatusFileShowsIt) {
    EXPECT_EQ(nMask::write(0), "0x0");
    EXPECT_EQ(nMask::write(0xFFFFFFFD), "0xfffffffd");
}

}  // namespace
