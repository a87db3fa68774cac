#include "tool/check/wording.h"

#include <gtest/gtest.h>

namespace {

TEST(nWording, PutsTextIntoQuotes) {
    EXPECT_EQ(nWording::quoted(""), "\"\"");
    EXPECT_EQ(nWording::quoted("a \"b\""), "\"a \"b\"\"");
}

TEST(nWording, CutsALongTextAfterAWholeCharacter) {
    const std::string longest(200, 'a');
    EXPECT_EQ(nWording::quoted(longest), '"' + longest + '"');
    EXPECT_EQ(nWording::quoted(longest + 'b'), '"' + longest + "...\"");
    const std::string before(199, 'a');
    EXPECT_EQ(nWording::quoted(before + "\u20AC"), '"' + before + "...\"");
    // Bytes that continue nothing are cut anywhere.
    EXPECT_EQ(nWording::quoted(std::string(300, '\x80')).size(), 196U + 5);
}

TEST(nWording, KnowsValidUtf8) {
    for (const std::string_view text :
         {"", "abc", "\u00E9", "\u0800", "\uD7FF", "\uE000", "\uFFFF", "\U00010000", "\U0010FFFF", "a\u540Db"}) {
        EXPECT_TRUE(nWording::isUtf8(text)) << text;
    }
    EXPECT_TRUE(nWording::isUtf8(std::string_view("\0", 1)));
}

TEST(nWording, KnowsInvalidUtf8) {
    for (const std::string_view text : {"\x80", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xE2\x82",
                                        "\xE2\x28\xA1", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF",
                                        "\xF0\x90\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "ok\xE9"}) {
        EXPECT_FALSE(nWording::isUtf8(text)) << text;
    }
}

}  // namespace
