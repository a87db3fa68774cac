#include "ini/lineReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

using nIni::tLineReader;
using std::string_view_literals::operator""sv;
using testing::ElementsAre;

using tLines = std::vector<std::string>;

void appendLines(tLines& lines, tLineReader& reader) {
    while (const auto line = reader.next()) lines.emplace_back(*line);
}

/// Cuts a text that arrives in two blocks.
tLines linesOf(std::string_view text, std::size_t firstBlockSize = 0) {
    tLineReader reader;
    tLines lines;
    const std::string firstBlock(text.substr(0, firstBlockSize));
    reader.setBlock(firstBlock, false);
    appendLines(lines, reader);
    const std::string lastBlock = std::string(reader.rest()).append(text.substr(firstBlockSize));
    reader.setBlock(lastBlock, true);
    appendLines(lines, reader);
    EXPECT_EQ(reader.lineNumber(), static_cast<std::int32_t>(lines.size()));
    return lines;
}

struct tCase {
    std::string_view text;
    tLines lines;
};

void expectLines(const std::vector<tCase>& cases) {
    for (const auto& [text, lines] : cases) EXPECT_EQ(linesOf(text), lines) << testing::PrintToString(text);
}

TEST(tLineReader, LinesEndWithAnyOfThreeTerminators) {
    expectLines({{"a\nb\nc\n", {"a", "b", "c"}}, {"a\rb\rc\r", {"a", "b", "c"}}, {"a\0b\0c\0"sv, {"a", "b", "c"}}});
}

TEST(tLineReader, TheLastLineNeedsNoTerminator) { expectLines({{"a", {"a"}}, {"a\nb", {"a", "b"}}}); }

TEST(tLineReader, TwoDifferentTerminatorsEndOneLine) {
    expectLines({{"a\r\nb\r\nc\r\n", {"a", "b", "c"}},
                 {"a\n\rb\n\rc\n\r", {"a", "b", "c"}},
                 {"a\n\0b\0\nc"sv, {"a", "b", "c"}},
                 {"a\r\0b\0\rc"sv, {"a", "b", "c"}}});
}

TEST(tLineReader, TheSameTerminatorTwiceMakesAnEmptyLine) {
    expectLines({{"a\n\nb", {"a", "", "b"}},
                 {"a\r\rb", {"a", "", "b"}},
                 {"a\0\0b"sv, {"a", "", "b"}},
                 {"a\r\n\r\nb", {"a", "", "b"}}});
}

TEST(tLineReader, OnlyOneCharacterIsSkipped) {
    expectLines({{"a\r\n\nb", {"a", "", "b"}}, {"a\r\r\nb", {"a", "", "b"}}, {"a\r\n\0b"sv, {"a", "", "b"}}});
}

TEST(tLineReader, ATextMayEndWithOrWithoutTerminators) {
    expectLines({{"", {}},
                 {"a\n", {"a"}},
                 {"a\n\n", {"a", ""}},
                 {"a\r\n", {"a"}},
                 {"a\r\n\r", {"a", ""}},
                 {"a\r\n\r\n", {"a", ""}},
                 {"a\n\n\n", {"a", "", ""}}});
}

TEST(tLineReader, ATerminatorBeforeTheFirstLineIsSkippedUnlessItIsAZero) {
    expectLines({{"\n", {}},
                 {"\r", {}},
                 {"\0"sv, {""}},
                 {"\na", {"a"}},
                 {"\ra", {"a"}},
                 {"\0a"sv, {"", "a"}},
                 {"\n\na", {"", "a"}},
                 {"\r\na", {"", "a"}},
                 {"\0\na"sv, {"", "a"}}});
}

TEST(tLineReader, ABlockMayEndAnywhere) {
    constexpr std::string_view alphabet = "a\n\r\0"sv;
    for (std::size_t code = 0; code < 256; ++code) {
        std::string text = "b";
        for (std::size_t rest = code, i = 0; i < 4; ++i, rest /= 4) text += alphabet[rest % 4];
        for (std::size_t size = 1; size <= text.size(); ++size) {
            ASSERT_EQ(linesOf(text, size), linesOf(text)) << testing::PrintToString(text) << " at " << size;
        }
    }
}

TEST(tLineReader, ABlockMayContainNoWholeLine) {
    tLineReader reader;
    reader.setBlock("ab", false);
    EXPECT_EQ(reader.next(), std::nullopt);
    EXPECT_EQ(reader.rest(), "ab");
    reader.setBlock("abc\nd", false);
    EXPECT_EQ(reader.next(), "abc");
    EXPECT_EQ(reader.next(), std::nullopt);
    EXPECT_EQ(reader.rest(), "d");
}

TEST(tLineReader, EachTerminatorIsSeenAtEveryPlaceAndNoOtherCharacterIs) {
    std::string others;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '\n' && byte != '\r') others += static_cast<char>(byte);
    }
    for (const char terminator : {'\n', '\r', '\0'}) {
        for (std::size_t size = 1; size <= 50; ++size) {
            const std::string line(size, 'x');
            EXPECT_THAT(linesOf(line + terminator + others + line), ElementsAre(line, others + line)) << size;
            EXPECT_THAT(linesOf(others + line + terminator), ElementsAre(others + line)) << size;
        }
    }
}

TEST(tLineReader, TheLineNumberStaysAtTheLargestOne) {
    tLineReader reader(std::numeric_limits<std::int32_t>::max() - 1);
    reader.setBlock("a\nb\nc", true);
    for (const char* const line : {"a", "b", "c"}) {
        EXPECT_EQ(reader.next(), line);
        EXPECT_EQ(reader.lineNumber(), std::numeric_limits<std::int32_t>::max());
    }
}

}  // namespace
