#include "tool/format.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "tests/support/groupingLocale.h"

namespace {

TEST(format, FormatsTextsAndNumbersTheSameInAnyLocale) {
    const support::tGroupingLocale locale;
    EXPECT_EQ(fmt::format("{}: {} of {}", "插件", -1234567, std::uint64_t{18446744073709551615U}),
              "插件: -1234567 of 18446744073709551615");
    EXPECT_EQ(fmt::format("{:#x} {:08x} {:5}|{:<5}|", 255U, 48879, 7, std::string("ab")), "0xff 0000beef     7|ab   |");
    EXPECT_EQ(fmt::format("{:.3f} {}", 2.0 / 3, std::string_view("b")), "0.667 b");
}

TEST(format, AppendsToATextThatGrows) {
    std::string text;
    for (int i = 0; i < 1000; ++i) fmt::format_to(std::back_inserter(text), "{},", std::string(10, 'a'));
    EXPECT_EQ(text.size(), 11'000U);
}

}  // namespace
