#include "tool/plainText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::string replacement = "\xEF\xBF\xBD";

TEST(nPlainText, LeavesValidTextsAlone) {
    for (const std::string text : {"", "plain ~", "Bl\xC3\xBCte", "\xE6\x8F\x92\xE4\xBB\xB6", "\xF0\x9F\x99\x82",
                                   "\xED\x9F\xBF", "\xEE\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(nPlainText::valid(text), text);
        EXPECT_EQ(nPlainText::printable(text), text);
    }
    EXPECT_EQ(nPlainText::valid("\x1B[2J\n\x7F"), "\x1B[2J\n\x7F");
}

TEST(nPlainText, ReplacesEachByteThatBeginsNoCharacter) {
    struct {
        std::string text;
        std::string valid;
    } const rows[] = {{"\x80", replacement},
                      {"a\xFFz", "a" + replacement + "z"},
                      {"\xC3", replacement},                                                        // cut short
                      {"\xC3z", replacement + "z"},                                                 // no continuation
                      {"\xC1\x81", replacement + replacement},                                      // overlong
                      {"\xE0\x9F\xBF", replacement + replacement + replacement},                    // overlong
                      {"\xED\xA0\x80", replacement + replacement + replacement},                    // a surrogate
                      {"\xED\xBF\xBF", replacement + replacement + replacement},                    // a surrogate
                      {"\xF4\x90\x80\x80", replacement + replacement + replacement + replacement},  // above U+10FFFF
                      {"\xF8\x88\x80\x80\x80", replacement + replacement + replacement + replacement + replacement}};
    for (const auto& row : rows) {
        EXPECT_EQ(nPlainText::valid(row.text), row.valid);
        EXPECT_EQ(nPlainText::printable(row.text), row.valid);
    }
}

TEST(nPlainText, ReplacesWhatControlsTheTerminal) {
    for (const std::string control :
         {"\x1B", "\n", "\t", "\x1F", "\x7F", "\xC2\x80", "\xC2\x9B", "\xC2\x9F", "\xD8\x9C", "\xE2\x80\x8E",
          "\xE2\x80\x8F", "\xE2\x80\xA8", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA9"}) {
        EXPECT_EQ(nPlainText::printable("a" + control), "a" + replacement) << control;
    }
    EXPECT_EQ(nPlainText::printable(std::string(1, '\0')), replacement);
}

TEST(nPlainText, LeavesTheNeighboursOfControlsAlone) {
    for (const std::string text : {" ", "~", "\xC2\xA0", "\xE2\x80\x8D", "\xE2\x80\x90", "\xE2\x80\xA7", "\xE2\x80\xAF",
                                   "\xE2\x81\xA5", "\xE2\x81\xAA", "\xD8\x9B", "\xD8\x9D"}) {
        EXPECT_EQ(nPlainText::printable(text), text);
    }
}

TEST(nPlainText, CountsColumns) {
    EXPECT_EQ(nPlainText::columns(""), 0U);
    EXPECT_EQ(nPlainText::columns("abc"), 3U);
    EXPECT_EQ(nPlainText::columns("Bl\xC3\xBCte"), 5U);
    EXPECT_EQ(nPlainText::columns("\xE6\x8F\x92\xE4\xBB\xB6"), 4U);  // Chinese
    EXPECT_EQ(nPlainText::columns("e\xCC\x81"), 1U);                 // a combining accent
    EXPECT_EQ(nPlainText::columns("\xF0\x9F\x99\x82"), 2U);          // a smiley
    EXPECT_EQ(nPlainText::columns("\xEA\xB0\x80\xED\x9E\xA3"), 4U);  // the first and the last Hangul syllable
}

/// Returns the character in UTF-8.
std::string encoded(char32_t codePoint) {
    const auto continued = [codePoint](unsigned shift) {
        return static_cast<char>(0x80U | ((codePoint >> shift) & 0x3FU));
    };
    if (codePoint < 0x80) return {static_cast<char>(codePoint)};
    if (codePoint < 0x800) return {static_cast<char>(0xC0U | (codePoint >> 6U)), continued(0)};
    if (codePoint < 0x10000) return {static_cast<char>(0xE0U | (codePoint >> 12U)), continued(6), continued(0)};
    return {static_cast<char>(0xF0U | (codePoint >> 18U)), continued(12), continued(6), continued(0)};
}

struct tBlock {
    char32_t first;
    char32_t last;
};

/// Expects that the first and the last character of each block take so many columns, and those around it do not.
void expectColumns(std::size_t columns, const std::vector<tBlock>& blocks) {
    for (const tBlock& block : blocks) {
        EXPECT_EQ(nPlainText::columns(encoded(block.first)), columns) << std::hex << std::uint32_t{block.first};
        EXPECT_EQ(nPlainText::columns(encoded(block.last)), columns) << std::hex << std::uint32_t{block.last};
        EXPECT_NE(nPlainText::columns(encoded(block.first - 1)), columns) << std::hex << std::uint32_t{block.first};
        EXPECT_NE(nPlainText::columns(encoded(block.last + 1)), columns) << std::hex << std::uint32_t{block.last};
    }
}

TEST(nPlainText, CountsTwoColumnsForWideCharacters) {
    expectColumns(2, {{0x1100, 0x115F},
                      {0x2E80, 0x303E},
                      {0x3041, 0xA4CF},
                      {0xAC00, 0xD7A3},
                      {0xF900, 0xFAFF},
                      {0xFE30, 0xFE6F},
                      {0xFF00, 0xFF60},
                      {0xFFE0, 0xFFE6},
                      {0x1F300, 0x1F64F},
                      {0x1F900, 0x1F9FF},
                      {0x20000, 0x3FFFD}});
}

TEST(nPlainText, CountsNoColumnForMarksAndJoiners) {
    expectColumns(0, {{0x300, 0x36F},
                      {0x483, 0x489},
                      {0x591, 0x5BD},
                      {0x200B, 0x200D},
                      {0x20D0, 0x20FF},
                      {0xFE00, 0xFE0F},
                      {0xFEFF, 0xFEFF}});
}

TEST(nPlainText, ShortensATextToItsBeginningAndAnEllipsis) {
    EXPECT_EQ(nPlainText::shortened("abcdef", 6), "abcdef");
    EXPECT_EQ(nPlainText::shortened("abcdef", 5), "abcd\xE2\x80\xA6");
    EXPECT_EQ(nPlainText::shortened("abcdef", 1), "\xE2\x80\xA6");
    EXPECT_EQ(nPlainText::shortened("", 0), "");
}

TEST(nPlainText, ShortensATextOfMarksThatTakeNoColumns) {
    std::string marks;
    for (int i = 0; i < 1000; ++i) marks += "\xCC\x81";
    EXPECT_EQ(nPlainText::shortened(marks.substr(0, 40), 10), marks.substr(0, 40));
    EXPECT_EQ(nPlainText::shortened(marks, 10), marks.substr(0, 40) + "\xE2\x80\xA6");
}

TEST(nPlainText, ReplacesWhatXmlExcludesAsWell) {
    EXPECT_EQ(nPlainText::printableInXml("a\n\xFF"
                                         "b\xEF\xBF\xBF\xEF\xBF\xBE\xEF\xBF\xBF"),
              "a" + replacement + replacement + "b" + replacement + replacement + replacement);
    EXPECT_EQ(nPlainText::printableInXml("漢字 \xEF\xBF\xBC"), "漢字 \xEF\xBF\xBC");
}

TEST(nPlainText, EscapesTheCharactersOfMarkup) {
    EXPECT_EQ(nPlainText::escapedMarkup("<a href=\"x\">Q&A's</a>"), "&lt;a href=&quot;x&quot;&gt;Q&amp;A's&lt;/a&gt;");
}

TEST(nPlainText, CutsNoWideCharacterInTwo) {
    const std::string wide = "\xE6\x8F\x92";
    EXPECT_EQ(nPlainText::shortened(wide + wide + wide, 6), wide + wide + wide);
    EXPECT_EQ(nPlainText::shortened(wide + wide + wide, 5), wide + wide + "\xE2\x80\xA6");
    EXPECT_EQ(nPlainText::shortened(wide + wide + wide, 4), wide + "\xE2\x80\xA6");
}

}  // namespace
