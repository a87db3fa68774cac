#include "trace/prefix.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace {

using nTrace::Indentation;
using nTrace::IndentationTable;
using nTrace::Site;

constexpr std::uint32_t thread = 4711;

/// What a piece writes into a buffer of this size, which must end where the piece says.
template <class Write>
std::string written(std::size_t size, Write write) {
    std::vector<char> buffer(size, '#');
    const char* const end = write(buffer.data(), size);
    EXPECT_EQ(*end, 0);
    EXPECT_EQ(end, buffer.data() + std::strlen(buffer.data()));
    return buffer.data();
}

std::string aligned(const char* text, std::size_t width, std::size_t size = 100) {
    return written(size, [=](char* out, std::size_t room) { return nTrace::writeAligned(out, room, text, width); });
}

std::string lineNumber(std::uint32_t line, std::size_t size = 100) {
    return written(size, [=](char* out, std::size_t room) { return nTrace::writeLineNumber(out, room, line); });
}

std::string indentation(const IndentationTable& table, std::size_t size = 100) {
    return written(size, [&](char* out, std::size_t room) { return writeIndentation(out, room, table, thread); });
}

std::string prefix(const Site& site, const IndentationTable& table = {}, std::size_t size = 1000) {
    return written(size, [&](char* out, std::size_t room) { return writePrefix(out, room, site, table, thread); });
}

TEST(TraceText, IsWrittenAsItIsOrCut) {
    const auto text = [](std::size_t size) {
        return written(size, [](char* out, std::size_t room) { return nTrace::writeText(out, room, "] "); });
    };
    EXPECT_EQ(text(100), "] ");
    EXPECT_EQ(text(3), "] ");
    EXPECT_EQ(text(2), "]");
    EXPECT_EQ(text(1), "");
}

TEST(TraceAlignment, WritesANameOfTheWidthAsItStands) { EXPECT_EQ(aligned("abcdefghij", 10), "abcdefghij"); }

TEST(TraceAlignment, PadsAShorterNameOnTheLeft) {
    EXPECT_EQ(aligned("abc", 10), "       abc");
    EXPECT_EQ(aligned("", 10), "          ");
}

TEST(TraceAlignment, KeepsTheEndOfALongerName) {
    EXPECT_EQ(aligned("abcdefghijk", 10), "bcdefghijk");
    EXPECT_EQ(aligned("zuZiptraRemoteService", 10), "oteService");
}

TEST(TraceAlignment, IsCutOnTheRightWhereTheRoomEnds) {
    EXPECT_EQ(aligned("abc", 10, 11), "       abc");
    EXPECT_EQ(aligned("abc", 10, 10), "       ab");
    EXPECT_EQ(aligned("abc", 10, 8), "       ");
    EXPECT_EQ(aligned("abc", 10, 4), "   ");
    EXPECT_EQ(aligned("abc", 10, 1), "");
    EXPECT_EQ(aligned("abcdefghijk", 10, 4), "bcd");
}

TEST(TraceLineNumber, HasFourDigits) {
    EXPECT_EQ(lineNumber(0), "0000");
    EXPECT_EQ(lineNumber(7), "0007");
    EXPECT_EQ(lineNumber(9999), "9999");
}

TEST(TraceLineNumber, KeepsItsLastFourDigits) {
    EXPECT_EQ(lineNumber(10'000), "0000");
    EXPECT_EQ(lineNumber(12'345), "2345");
    EXPECT_EQ(lineNumber(std::numeric_limits<std::uint32_t>::max()), "7295");
}

TEST(TraceLineNumber, IsCutWhereTheRoomEnds) {
    EXPECT_EQ(lineNumber(1234, 5), "1234");
    EXPECT_EQ(lineNumber(1234, 4), "123");
    EXPECT_EQ(lineNumber(1234, 1), "");
}

TEST(TraceIndentation, IsOneSpacePerLevelOfTheThread) {
    IndentationTable table{};
    table[15] = {thread, 3, 1};
    EXPECT_EQ(indentation(table), "   ");
    table[15].depth = 0;
    EXPECT_EQ(indentation(table), "");
}

TEST(TraceIndentation, IsNoneForAThreadWithoutASlot) {
    IndentationTable table{};
    EXPECT_EQ(indentation(table), "");
    table.fill({thread + 1, 3, 1});
    EXPECT_EQ(indentation(table), "");
}

TEST(TraceIndentation, PassesOverSlotsThatAreNotInUse) {
    IndentationTable table{};
    table[0] = {thread, 3, 0};
    EXPECT_EQ(indentation(table), "");
    table[1] = {thread, 2, 1};
    EXPECT_EQ(indentation(table), "  ");
}

TEST(TraceIndentation, IsCutWhereTheRoomEnds) {
    IndentationTable table{};
    table[0] = {thread, std::numeric_limits<std::uint32_t>::max(), 1};
    EXPECT_EQ(indentation(table, 5), "    ");
    EXPECT_EQ(indentation(table, 1), "");
}

TEST(TraceTable, HasSixteenSlotsOfThree32BitNumbers) {
    EXPECT_EQ(IndentationTable{}.size(), 16U);
    EXPECT_EQ(sizeof(Indentation), 12U);
}

TEST(TracePrefix, PutsThePiecesInTheirOrder) {
    IndentationTable table{};
    table[4] = {thread, 2, 1};
    EXPECT_EQ(prefix({"source/tService.cpp", "zuZiptraRemoteService", 217}, table),
              "[oteService|             source/tService.cpp|0217]   ");
}

TEST(TracePrefix, KeepsTheLast32CharactersOfAFileName) {
    const std::string file = "x" + std::string(31, 'y') + "z";
    EXPECT_EQ(prefix({file.c_str(), "short", 12'345}), "[     short|" + file.substr(1) + "|2345] ");
    EXPECT_EQ(prefix({file.c_str() + 1, "short", 1}), "[     short|" + file.substr(1) + "|0001] ");
}

TEST(TracePrefix, IsCutInEveryBufferAndAlwaysTerminated) {
    IndentationTable table{};
    table[0] = {thread, 5, 1};
    const Site site{"source/tService.cpp", "zuZiptraRemoteService", 217};
    const std::string whole = prefix(site, table);
    for (std::size_t size = 1; size <= whole.size() + 2; ++size) {
        EXPECT_EQ(prefix(site, table, size), whole.substr(0, size - 1));
    }
}

TEST(TracePrefix, LeavesOnlyTheTerminatorInOneByte) { EXPECT_EQ(prefix({"a.cpp", "component", 1}, {}, 1), ""); }

}  // namespace
