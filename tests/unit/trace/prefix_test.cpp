#include "trace/prefix.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using nTrace::tIndentation;
using nTrace::tIndentationTable;
using nTrace::tSite;

constexpr std::uint32_t thread = 4711;

/// Returns the text that a function writes into a buffer of this size; expects it to end where the function says.
template <class Write>
std::string written(std::size_t size, Write write) {
    std::vector<char> buffer(size, '#');
    const char* const end = write(buffer.data(), size);
    EXPECT_EQ(*end, 0);
    EXPECT_EQ(end, buffer.data() + std::strlen(buffer.data()));
    return buffer.data();
}

std::string aligned(const char* text, std::size_t width, std::size_t size) {
    return written(size, [=](char* out, std::size_t room) { return nTrace::writeAligned(out, room, text, width); });
}

std::string lineNumber(std::uint32_t line, std::size_t size = 100) {
    return written(size, [=](char* out, std::size_t room) { return nTrace::writeLineNumber(out, room, line); });
}

std::string indentation(const tIndentationTable& table, std::size_t size = 100) {
    return written(size, [&](char* out, std::size_t room) { return writeIndentation(out, room, table, thread); });
}

std::string prefix(const tSite& site, const tIndentationTable& table = {}, std::size_t size = 1000) {
    return written(size, [&](char* out, std::size_t room) { return writePrefix(out, room, site, table, thread); });
}

TEST(nTracePrefix, WritesATextUnchangedOrTruncatesIt) {
    const auto text = [](std::size_t size) {
        return written(size, [](char* out, std::size_t room) { return nTrace::writeText(out, room, "] "); });
    };
    EXPECT_EQ(text(100), "] ");
    EXPECT_EQ(text(3), "] ");
    EXPECT_EQ(text(2), "]");
    EXPECT_EQ(text(1), "");
}

TEST(nTracePrefix, RightAlignsANameInTenCharactersAndTruncatesItAtTheEndOfTheBuffer) {
    struct {
        const char* name;
        std::size_t size;
        const char* result;
    } const rows[] = {{"abcdefghij", 100, "abcdefghij"},
                      {"abc", 100, "       abc"},
                      {"", 100, "          "},
                      {"abcdefghijk", 100, "bcdefghijk"},
                      {"zuZiptraRemoteService", 100, "oteService"},
                      {"abc", 11, "       abc"},
                      {"abc", 10, "       ab"},
                      {"abc", 8, "       "},
                      {"abc", 4, "   "},
                      {"abc", 1, ""},
                      {"abcdefghijk", 4, "bcd"}};
    for (const auto& row : rows) EXPECT_EQ(aligned(row.name, 10, row.size), row.result);
}

TEST(nTracePrefix, WritesTheLastFourDigitsOfALineNumber) {
    const std::pair<std::uint32_t, const char*> rows[] = {{0, "0000"},      {7, "0007"},      {9999, "9999"},
                                                          {10'000, "0000"}, {12'345, "2345"}, {0xFFFFFFFF, "7295"}};
    for (const auto& [line, digits] : rows) EXPECT_EQ(lineNumber(line), digits);
    EXPECT_EQ(lineNumber(1234, 5), "1234");
    EXPECT_EQ(lineNumber(1234, 4), "123");
    EXPECT_EQ(lineNumber(1234, 1), "");
}

TEST(nTracePrefix, IndentsByOneSpacePerLevelOfTheThread) {
    tIndentationTable table{};
    table[15] = {thread, 3, 1};
    EXPECT_EQ(indentation(table), "   ");
    table[15].depth = 0;
    EXPECT_EQ(indentation(table), "");
}

TEST(nTracePrefix, DoesNotIndentForAThreadWithoutASlot) {
    tIndentationTable table{};
    EXPECT_EQ(indentation(table), "");
    table.fill({thread + 1, 3, 1});
    EXPECT_EQ(indentation(table), "");
}

TEST(nTracePrefix, SkipsSlotsThatAreNotInUse) {
    tIndentationTable table{};
    table[0] = {thread, 3, 0};
    EXPECT_EQ(indentation(table), "");
    table[1] = {thread, 2, 1};
    EXPECT_EQ(indentation(table), "  ");
}

TEST(nTracePrefix, TruncatesTheIndentationAtTheEndOfTheBuffer) {
    tIndentationTable table{};
    table[0] = {thread, std::numeric_limits<std::uint32_t>::max(), 1};
    EXPECT_EQ(indentation(table, 5), "    ");
    EXPECT_EQ(indentation(table, 1), "");
}

TEST(nTracePrefix, WritesThePartsInOrder) {
    tIndentationTable table{};
    table[4] = {thread, 2, 1};
    EXPECT_EQ(prefix({"source/tService.cpp", "zuZiptraRemoteService", 217}, table),
              "[oteService|             source/tService.cpp|0217]   ");
}

TEST(nTracePrefix, KeepsTheLast32CharactersOfAFileName) {
    const std::string file = "x" + std::string(31, 'y') + "z";
    EXPECT_EQ(prefix({file.c_str(), "short", 12'345}), "[     short|" + file.substr(1) + "|2345] ");
    EXPECT_EQ(prefix({file.c_str() + 1, "short", 1}), "[     short|" + file.substr(1) + "|0001] ");
}

TEST(nTracePrefix, IsTruncatedToAnyBufferAndAlwaysTerminated) {
    tIndentationTable table{};
    table[0] = {thread, 5, 1};
    const tSite site{"source/tService.cpp", "zuZiptraRemoteService", 217};
    const std::string whole = prefix(site, table);
    for (std::size_t size = 1; size <= whole.size() + 2; ++size) {
        EXPECT_EQ(prefix(site, table, size), whole.substr(0, size - 1));
    }
}

}  // namespace
