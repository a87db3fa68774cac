#include "ini/lineReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "ini/file.h"
#include "tests/support/iniFile.h"

namespace {

using nIni::tLineReader;
using std::string_view_literals::operator""sv;
using testing::ElementsAre;
using testing::IsEmpty;

/// The reader asks for four bytes first and then for chunks of this size, until a block of 65536 is full.
constexpr std::size_t chunkSize = 2084;
constexpr std::size_t firstChunkEnd = 4 + chunkSize;
constexpr std::size_t firstBlockEnd = 4 + (65536 - 4) / chunkSize * chunkSize;

nIni::tFile open(const tIniFile& file) { return nIni::openFile(file.widePath().c_str()); }

std::vector<std::string> readLines(const tIniFile& file) {
    const nIni::tFile stream = open(file);
    nIni::tText text;
    tLineReader reader(stream.get(), text);
    EXPECT_TRUE(reader.skipByteOrderMark());
    std::vector<std::string> lines;
    while (const auto line = reader.next()) lines.emplace_back(*line);
    EXPECT_FALSE(reader.failed());
    EXPECT_EQ(reader.lineNumber(), static_cast<std::int32_t>(lines.size()));
    return lines;
}

std::vector<std::string> linesOf(std::string_view content) { return readLines(tIniFile(content)); }

/// The rules once more, for a text that lies in memory.
std::vector<std::string> expectedLines(std::string_view text) {
    std::vector<std::string> lines;
    char last = 0;
    while (!text.empty()) {
        const auto isTerminator = [](char c) { return c == '\n' || c == '\r' || c == 0; };
        if (isTerminator(text.front()) && text.front() != last) text.remove_prefix(1);
        std::string line;
        while (!text.empty() && !isTerminator(text.front())) {
            line += text.front();
            text.remove_prefix(1);
        }
        if (text.empty() && line.empty()) break;
        lines.push_back(line);
        if (text.empty()) break;
        last = text.front();
        text.remove_prefix(1);
    }
    return lines;
}

TEST(LineReader, LinesEndWithAnyOfThreeTerminators) {
    EXPECT_THAT(linesOf("a\nb\nc\n"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(linesOf("a\rb\rc\r"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(linesOf("a\0b\0c\0"sv), ElementsAre("a", "b", "c"));
}

TEST(LineReader, TheLastLineNeedsNoTerminator) {
    EXPECT_THAT(linesOf("a"), ElementsAre("a"));
    EXPECT_THAT(linesOf("a\nb"), ElementsAre("a", "b"));
}

TEST(LineReader, TwoDifferentTerminatorsEndOneLine) {
    EXPECT_THAT(linesOf("a\r\nb\r\nc\r\n"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(linesOf("a\n\rb\n\rc\n\r"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(linesOf("a\n\0b\0\nc"sv), ElementsAre("a", "b", "c"));
    EXPECT_THAT(linesOf("a\r\0b\0\rc"sv), ElementsAre("a", "b", "c"));
}

TEST(LineReader, TheSameTerminatorTwiceMakesAnEmptyLine) {
    EXPECT_THAT(linesOf("a\n\nb"), ElementsAre("a", "", "b"));
    EXPECT_THAT(linesOf("a\r\rb"), ElementsAre("a", "", "b"));
    EXPECT_THAT(linesOf("a\0\0b"sv), ElementsAre("a", "", "b"));
    EXPECT_THAT(linesOf("a\r\n\r\nb"), ElementsAre("a", "", "b"));
}

TEST(LineReader, OneCharacterIsSkippedAndNoMore) {
    EXPECT_THAT(linesOf("a\r\n\nb"), ElementsAre("a", "", "b"));
    EXPECT_THAT(linesOf("a\r\r\nb"), ElementsAre("a", "", "b"));
    EXPECT_THAT(linesOf("a\r\n\0b"sv), ElementsAre("a", "", "b"));
}

TEST(LineReader, FilesMayEndWithOrWithoutTerminators) {
    EXPECT_THAT(linesOf(""), IsEmpty());
    EXPECT_THAT(linesOf("a\n"), ElementsAre("a"));
    EXPECT_THAT(linesOf("a\n\n"), ElementsAre("a", ""));
    EXPECT_THAT(linesOf("a\r\n"), ElementsAre("a"));
    EXPECT_THAT(linesOf("a\r\n\r"), ElementsAre("a", ""));
    EXPECT_THAT(linesOf("a\r\n\r\n"), ElementsAre("a", ""));
    EXPECT_THAT(linesOf("a\n\n\n"), ElementsAre("a", "", ""));
}

TEST(LineReader, ATerminatorBeforeTheFirstLineIsSkippedUnlessItIsAZero) {
    EXPECT_THAT(linesOf("\n"), IsEmpty());
    EXPECT_THAT(linesOf("\r"), IsEmpty());
    EXPECT_THAT(linesOf("\0"sv), ElementsAre(""));
    EXPECT_THAT(linesOf("\na"), ElementsAre("a"));
    EXPECT_THAT(linesOf("\ra"), ElementsAre("a"));
    EXPECT_THAT(linesOf("\0a"sv), ElementsAre("", "a"));
    EXPECT_THAT(linesOf("\n\na"), ElementsAre("", "a"));
    EXPECT_THAT(linesOf("\r\na"), ElementsAre("", "a"));
    EXPECT_THAT(linesOf("\0\na"sv), ElementsAre("", "a"));
}

TEST(LineReader, EveryMixOfTerminatorsReadsAlikeAtTheStartAndAcrossChunkEnds) {
    constexpr std::string_view alphabet = "a\n\r\0"sv;
    const tIniFile file("");
    for (std::size_t code = 0; code < 4 * 4 * 4; ++code) {
        std::string mix;
        for (std::size_t rest = code, i = 0; i < 3; ++i, rest /= 4) mix += alphabet[rest % 4];
        for (const std::size_t before : {std::size_t{0}, firstChunkEnd - 1, firstBlockEnd - 1}) {
            const std::string text = std::string(before, 'x') + mix + "y";
            file.write(text);
            ASSERT_EQ(readLines(file), expectedLines(text)) << "mix " << code << " behind " << before;
        }
    }
}

TEST(LineReader, APairMayBeSplitByTheEndOfAChunk) {
    for (const std::size_t end : {firstChunkEnd, firstBlockEnd}) {
        for (std::size_t size = end - 3; size <= end + 1; ++size) {
            const std::string longLine(size, 'x');
            EXPECT_THAT(linesOf(longLine + "\r\nb\r\n"), ElementsAre(longLine, "b"));
            EXPECT_THAT(linesOf(longLine + "\n\nb"), ElementsAre(longLine, "", "b"));
            EXPECT_THAT(linesOf(longLine + "\r\n"), ElementsAre(longLine));
            EXPECT_THAT(linesOf(longLine), ElementsAre(longLine));
        }
    }
}

TEST(LineReader, EachTerminatorIsSeenAtEveryPlace) {
    for (const char terminator : {'\n', '\r', '\0'}) {
        for (std::size_t size = 1; size <= 50; ++size) {
            const std::string line(size, 'x');
            // Neighbours of the terminators' codes, and the signed ones, are no terminators.
            const std::string others = "\x01\x09\x0B\x0C\x0E\x7F\x80\x8A\x8D\xFF";
            EXPECT_THAT(linesOf(line + terminator + others + line), ElementsAre(line, others + line)) << size;
        }
    }
}

TEST(LineReader, LinesOfAnyLengthAreWhole) {
    std::vector<std::string> lines;
    std::string text;
    for (const std::size_t size : {1, 2083, 2084, 2085, 5000, 65535, 65536, 65537, 131'072, 300'000, 3}) {
        std::string line(size, 'x');
        for (std::size_t i = 0; i < size; i += 7) line[i] = static_cast<char>('a' + i % 26);
        text += line + '\n';
        lines.push_back(line);
    }
    EXPECT_EQ(linesOf(text), lines);
}

TEST(LineReader, LinesStayWhereTheyAreWhileOthersAreRead) {
    std::string content;
    for (int i = 0; i < 50'000; ++i) content += std::to_string(i) + '\n';
    const tIniFile file(content);
    const nIni::tFile stream = open(file);
    nIni::tText text;
    tLineReader reader(stream.get(), text);
    ASSERT_TRUE(reader.skipByteOrderMark());
    std::vector<std::string_view> lines;
    while (const auto line = reader.next()) lines.push_back(*line);
    ASSERT_EQ(lines.size(), 50'000U);
    for (std::size_t i = 0; i < lines.size(); ++i) ASSERT_EQ(lines[i], std::to_string(i));
}

TEST(LineReader, TheMarkOfUtf8IsSkippedOnce) {
    EXPECT_THAT(linesOf("\xEF\xBB\xBF"), IsEmpty());
    EXPECT_THAT(linesOf("\xEF\xBB\xBF"
                        "a\n"),
                ElementsAre("a"));
    EXPECT_THAT(linesOf("\xEF\xBB\xBF\na"), ElementsAre("a")) << "a line feed before the first line";
    EXPECT_THAT(linesOf("\xEF\xBB\xBF\xEF\xBB\xBF"), ElementsAre("\xEF\xBB\xBF"));
}

TEST(LineReader, IncompleteMarksAreText) {
    for (const std::string_view start : {"\xEF"sv, "\xEF\xBB"sv, "\xEF\xBB\xBE"sv, "\xFF"sv, "\xFE"sv, "\xFE\xFE"sv}) {
        EXPECT_THAT(linesOf(start), ElementsAre(start));
    }
    EXPECT_EQ(linesOf("\0\0\xFE"sv), expectedLines("\0\0\xFE"sv));
    EXPECT_EQ(linesOf("\0\0\xFE\xFE"sv), expectedLines("\0\0\xFE\xFE"sv));
    EXPECT_EQ(linesOf("a\xEF\xBB\xBF"sv), expectedLines("a\xEF\xBB\xBF"sv));
}

TEST(LineReader, WideMarksAreRefused) {
    for (const std::string_view start :
         {"\xFF\xFE"sv, "\xFE\xFF"sv, "\xFF\xFEx"sv, "\xFF\xFE\0\0"sv, "\0\0\xFE\xFF"sv, "\xFE\xFF\0[\0s"sv}) {
        const tIniFile file(start);
        const nIni::tFile stream = open(file);
        nIni::tText text;
        tLineReader reader(stream.get(), text);
        EXPECT_FALSE(reader.skipByteOrderMark()) << testing::PrintToString(start);
    }
}

TEST(LineReader, TheLineNumberStaysAtTheLargestOne) {
    const tIniFile file("a\nb\nc");
    const nIni::tFile stream = open(file);
    nIni::tText text;
    tLineReader reader(stream.get(), text, std::numeric_limits<std::int32_t>::max() - 1);
    for (const char* const line : {"a", "b", "c"}) {
        EXPECT_EQ(reader.next(), line);
        EXPECT_EQ(reader.lineNumber(), std::numeric_limits<std::int32_t>::max());
    }
}

TEST(LineReader, WhatIsAppendedBehindTheEndIsNotRead) {
    const tIniFile file("a\nb");
    const nIni::tFile stream = open(file);
    nIni::tText text;
    tLineReader reader(stream.get(), text);
    EXPECT_EQ(reader.next(), "a");
    file.write("a\nbc\nd\n");
    EXPECT_EQ(reader.next(), "b");
    EXPECT_EQ(reader.next(), std::nullopt);
    EXPECT_FALSE(reader.failed());
}

}  // namespace
