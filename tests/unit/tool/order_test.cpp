#include "tool/run/order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using nRun::readOrder;
using nRun::tOrder;
using nRun::toText;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(nRunOrder, IsOneLifeWithAllFeaturesUnlessItSaysOtherwise) {
    const auto order = nRun::readOrder(nRun::toText({{"a.ini"}}));
    ASSERT_TRUE(order);
    EXPECT_EQ(order->times, 1U);
    EXPECT_EQ(order->allowedMask, 0xFFFFFFFFU);
    EXPECT_FALSE(order->keepLoaded);
}

TEST(nRunOrder, IsReadAsItWasWritten) {
    const auto order = readOrder(toText({{"C:\\p\\a b.ini", "\xE6\x8F\x92.ini"}, 100, 0xFFFFFFFD, true}));
    ASSERT_TRUE(order);
    EXPECT_THAT(order->files, ElementsAre("C:\\p\\a b.ini", "\xE6\x8F\x92.ini"));
    EXPECT_EQ(order->times, 100U);
    EXPECT_EQ(order->allowedMask, 0xFFFFFFFD);
    EXPECT_TRUE(order->keepLoaded);
    EXPECT_THAT(readOrder(toText({}))->files, IsEmpty());
}

TEST(nRunOrder, IsNoOrderIfItIsCutOffAnywhere) {
    const std::string text = toText({{"a.ini", "b.ini"}, 2, 7});
    for (std::size_t size = 0; size < text.size(); ++size) EXPECT_FALSE(readOrder(text.substr(0, size))) << size;
}

TEST(nRunOrder, IsNoOrderWithAnythingElseInPlaceOfANumber) {
    for (const char* const text :
         {"x\n1\n0\n0\n", "1\n-1\n0\n0\n", "1\n1\n-\n0\n", "1\n1\n0\n0x\n", "\n\n\n\n", "1\n4294967296\n0\n0\n"}) {
        EXPECT_FALSE(readOrder(text)) << text;
    }
}

}  // namespace
