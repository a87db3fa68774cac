#include "err/JsonReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/report.h"

namespace {

using report::tBuffer;
using testing::StrEq;
using zuerr::AddInt;
using zuerr::AddObject;
using zuerr::AddString;
using zuerr::AddUInt;
using zuerr::CopyText;
using zuerr::JsonChain;

// Members and their order

/// Returns the text after a number has been added at the offset, which counts from the end if negative. An array
/// element has no key.
std::string inserted(const std::string& text, int offset) {
    tBuffer buffer(512, text.c_str());
    char* const cursor = buffer.text() + offset + (offset < 0 ? static_cast<int>(text.size()) : 0);
    const bool inArray = text.find('"') == std::string::npos && text.find('{') == std::string::npos;
    EXPECT_NE(AddInt(cursor, inArray ? nullptr : "k", 9), nullptr);
    EXPECT_TRUE(buffer.wellLaidOut());
    return buffer.text();
}

TEST(JsonReport, AppendsAtTheClosingBrace) {
    EXPECT_EQ(inserted("{}", -1), R"({"k":9})");
    EXPECT_EQ(inserted(R"({"a":1})", -1), R"({"a":1,"k":9})");
    EXPECT_EQ(inserted("[[]]", -1), "[[],9]");
}

TEST(JsonReport, PrependsAtTheOpeningBrace) {
    EXPECT_EQ(inserted("{}", 0), R"({"k":9})");
    EXPECT_EQ(inserted(R"({"a":1})", 0), R"({"k":9,"a":1})");
    EXPECT_EQ(inserted("[[]]", 0), "[9,[]]");
}

TEST(JsonReport, InsertsAfterAValueInTheMiddle) {
    EXPECT_EQ(inserted(R"({"a":1,"c":3})", 6), R"({"a":1,"k":9,"c":3})");
    EXPECT_EQ(inserted(R"([{"a":1}])", -2), R"([{"a":1,"k":9}])");
}

TEST(JsonReport, IgnoresBlanksInDecidingWhetherACommaIsNeeded) {
    EXPECT_EQ(inserted("{ \t\r\n}", 0), "{\"k\":9 \t\r\n}");
    EXPECT_EQ(inserted("[ \t\r\n]", -1), "[ \t\r\n9]");
    EXPECT_EQ(inserted("{\"a\":1 \n}", -1), "{\"a\":1 \n,\"k\":9}");
}

TEST(JsonReport, WritesNoCommaAtTheEndOfTheText) {
    EXPECT_EQ(inserted("", 0), "9");
    EXPECT_EQ(inserted("[", 0), "[9");
}

TEST(JsonReport, KeepsTheOrderOfWritesAtTheReturnedCursors) {
    tBuffer atEnd(512, "{}");
    char* cursor = AddString(atEnd.end(), "error_constant", "zukesterr_osFault");
    cursor = AddString(cursor, "file", "a.cpp");
    EXPECT_THAT(atEnd.text(), StrEq(R"({"error_constant":"zukesterr_osFault","file":"a.cpp"})"));
    EXPECT_EQ(cursor, atEnd.end());
    tBuffer atStart(512, R"({"last":0})");
    cursor = AddInt(atStart.text(), "a", 1);
    cursor = AddInt(cursor, "b", 2);
    AddInt(cursor, "c", 3);
    EXPECT_THAT(atStart.text(), StrEq(R"({"a":1,"b":2,"c":3,"last":0})"));
}

TEST(JsonReport, WritesArrayElementsWithoutAKey) {
    tBuffer buffer(512, "[]");
    char* cursor = AddString(buffer.end(), nullptr, "a\"b");
    cursor = AddInt(cursor, nullptr, -1);
    cursor = AddUInt(cursor, nullptr, 1);
    AddObject(cursor, nullptr);
    EXPECT_THAT(buffer.text(), StrEq(R"(["a\"b",-1,1,{}])"));
}

TEST(JsonReport, FillsANestedObjectWithoutACommaBeforeItsFirstMember) {
    tBuffer buffer(512, R"({"a":1})");
    char* const nested = AddObject(buffer.end(), "internal_error");
    EXPECT_EQ(nested, buffer.end());
    char* const cursor = AddString(nested - 1, "api", "win32");
    AddUInt(cursor, "code", 5);
    EXPECT_THAT(buffer.text(), StrEq(R"({"a":1,"internal_error":{"api":"win32","code":5}})"));
    EXPECT_TRUE(buffer.wellLaidOut());
}

TEST(JsonReport, ReturnsNullForANullCursor) {
    EXPECT_EQ(AddString(nullptr, "a", "b"), nullptr);
    EXPECT_EQ(AddInt(nullptr, "a", 1), nullptr);
    EXPECT_EQ(AddUInt(nullptr, "a", 1), nullptr);
    EXPECT_EQ(AddObject(nullptr, "a"), nullptr);
}

// Numbers

TEST(JsonReport, WritesTheWholeRangeOfNumbers) {
    tBuffer buffer(512, "[]");
    char* cursor = AddInt(buffer.end(), nullptr, std::numeric_limits<std::int32_t>::min());
    cursor = AddInt(cursor, nullptr, std::numeric_limits<std::int32_t>::max());
    cursor = AddInt(cursor, nullptr, 0);
    AddUInt(cursor, nullptr, std::numeric_limits<std::uint32_t>::max());
    EXPECT_THAT(buffer.text(), StrEq("[-2147483648,2147483647,0,4294967295]"));
}

// Escaping

TEST(JsonReport, EscapesExactlySevenCharacters) {
    tBuffer buffer(512, "{}");
    AddString(buffer.end(), "k", "\b\t\n\f\r\"\\/'\x7f");
    EXPECT_THAT(buffer.text(), StrEq("{\"k\":\"\\b\\t\\n\\f\\r\\\"\\\\/'\x7f\"}"));
}

TEST(JsonReport, CopiesEveryOtherByteUnchanged) {
    std::string value;
    for (int byte = 1; byte < 256; ++byte) {
        if (std::strchr("\b\t\n\f\r\"\\", byte) == nullptr) value += static_cast<char>(byte);
    }
    tBuffer buffer(512, "[]");
    AddString(buffer.end(), nullptr, value.c_str());
    EXPECT_EQ(buffer.text(), "[\"" + value + "\"]");
}

TEST(JsonReport, EscapesKeysLikeValues) {
    tBuffer buffer(512, "{}");
    AddString(buffer.end(), "a\\\"", "b");
    EXPECT_THAT(buffer.text(), StrEq(R"({"a\\\"":"b"})"));
}

TEST(JsonReport, WritesTextThatAnotherLibraryCanRead) {
    const std::string value = "C:\\Gerät\\部署\n\"x\"";
    tBuffer buffer(512, "{}");
    AddString(buffer.end(), "file", value.c_str());
    EXPECT_EQ(report::parsed(buffer.text())["file"], value);
}

// Space

static_assert(std::is_nothrow_invocable_v<JsonChain::Grow, void*, const char*>);

/// Every kind of member, each in a container where it needs a comma and in one where it needs none.
struct tMember {
    const char* name;
    char* (*add)(char* cursor);
    const char* text;
};

class JsonReportSpace : public testing::TestWithParam<tMember> {};

TEST_P(JsonReportSpace, KeepsTheTextByteForByteIfTheSpaceIsTooSmall) {
    const std::size_t needed = std::strlen(GetParam().text);
    for (const char* before : {"{}", "{\"a\":1}"}) {
        const std::size_t comma = std::strlen(before) > 2 ? 1 : 0;
        for (std::size_t room = 0; room < needed + comma; ++room) {
            tBuffer buffer = tBuffer::withRoom(room, before);
            const auto bytes = buffer.bytes();
            EXPECT_EQ(GetParam().add(buffer.end()), nullptr);
            EXPECT_EQ(GetParam().add(buffer.text()), nullptr);
            EXPECT_EQ(buffer.bytes(), bytes);
        }
    }
}

TEST_P(JsonReportSpace, FitsExactlyIntoTheSpaceThatItNeeds) {
    const std::string member = GetParam().text;
    const auto expectWritten = [&](const std::string& before, bool atEnd, std::size_t comma, const std::string& after,
                                   std::size_t cursor) {
        tBuffer buffer = tBuffer::withRoom(member.size() + comma, before.c_str());
        const char* const next = GetParam().add(atEnd ? buffer.end() : buffer.text());
        EXPECT_EQ(buffer.text(), after);
        EXPECT_EQ(next, buffer.text() + cursor);
        EXPECT_TRUE(buffer.wellLaidOut());
    };
    expectWritten("{}", true, 0, "{" + member + "}", 1 + member.size());
    expectWritten("{\"a\":1}", true, 1, "{\"a\":1," + member + "}", 7 + member.size());
    expectWritten("{\"a\":1}", false, 1, "{" + member + ",\"a\":1}", 1 + member.size());
}

INSTANTIATE_TEST_SUITE_P(
    All, JsonReportSpace,
    testing::Values(
        tMember{"String", [](char* cursor) { return AddString(cursor, "k", "a\n\"\\"); }, R"("k":"a\n\"\\")"},
        tMember{"EmptyString", [](char* cursor) { return AddString(cursor, "", ""); }, R"("":"")"},
        tMember{"Int", [](char* cursor) { return AddInt(cursor, "k", -12); }, R"("k":-12)"},
        tMember{"UInt", [](char* cursor) { return AddUInt(cursor, "k", 4'000'000'000); }, R"("k":4000000000)"},
        tMember{"Object", [](char* cursor) { return AddObject(cursor, "k"); }, R"("k":{})"}),
    [](const auto& member) { return member.param.name; });

TEST(JsonReport, RejectsInABufferOf512BytesWhatFitsAfterDoubling) {
    // {"a":"..."} with one byte less than the next member and its comma need.
    const std::string member = R"("b":"0123456789")";
    const std::string filler(512 - 2 - std::strlen(R"({"a":""})") - member.size(), 'x');
    tBuffer buffer(512, (R"({"a":")" + filler + R"("})").c_str());
    const auto before = buffer.bytes();
    EXPECT_EQ(AddString(buffer.end(), "b", "0123456789"), nullptr);
    EXPECT_EQ(buffer.bytes(), before);
    tBuffer doubled(1024, buffer.text());
    EXPECT_NE(AddString(doubled.end(), "b", "0123456789"), nullptr);
    EXPECT_TRUE(doubled.wellLaidOut());
    EXPECT_EQ(report::parsed(doubled.text())["b"], "0123456789");
}

// CopyText

TEST(JsonReportCopyText, ReplacesTheTextAndWritesFillAndSentinel) {
    tBuffer buffer(16, R"({"a":12345})");
    EXPECT_TRUE(CopyText(buffer.text(), 16, "{}"));
    EXPECT_THAT(buffer.text(), StrEq("{}"));
    EXPECT_TRUE(buffer.wellLaidOut());
}

TEST(JsonReportCopyText, NeedsTheTextItsTerminatorAndTheSentinel) {
    std::vector<char> bytes(8, '#');
    EXPECT_FALSE(CopyText(bytes.data(), 3, "{}"));
    EXPECT_EQ(bytes, std::vector<char>(8, '#'));
    EXPECT_TRUE(CopyText(bytes.data(), 4, "{}"));
    EXPECT_EQ(bytes, (std::vector<char>{'{', '}', 0, 'J', '#', '#', '#', '#'}));
}

TEST(JsonReportCopyText, KeepsTheCurrentTextIfGivenNull) {
    std::vector<char> bytes{'[', ']', 0, 'x', 'y', 'z'};
    EXPECT_TRUE(CopyText(bytes.data(), 6, nullptr));
    EXPECT_EQ(bytes, (std::vector<char>{'[', ']', 0, 0, 0, 'J'}));
    EXPECT_FALSE(CopyText(bytes.data(), 3, nullptr));
}

TEST(JsonReportCopyText, StoresAnEmptyTextInTwoBytes) {
    std::vector<char> bytes(2, '#');
    EXPECT_FALSE(CopyText(bytes.data(), 1, ""));
    EXPECT_TRUE(CopyText(bytes.data(), 2, ""));
    EXPECT_EQ(bytes, (std::vector<char>{0, 'J'}));
}

// JsonChain

TEST(JsonChain, WritesMembersInOrderAndReturnsItsCursor) {
    tBuffer buffer(512, "{}");
    JsonChain chain(buffer.end(), nullptr, nullptr);
    chain.AddString("s", "text").AddInt("i", -1).AddUInt("u", 1).EnterObject("o");
    EXPECT_THAT(buffer.text(), StrEq(R"({"s":"text","i":-1,"u":1,"o":{}})"));
    EXPECT_THAT(chain.cursor(), StrEq("}}"));
    chain.AddInt("x", 1).AddInt("y", 2).LeaveObject().EnterObject("p").LeaveObject().AddInt("z", 3);
    EXPECT_THAT(buffer.text(), StrEq(R"({"s":"text","i":-1,"u":1,"o":{"x":1,"y":2},"p":{},"z":3})"));
}

TEST(JsonChain, SkipsTheMemberThatDoesNotFitAndEveryLaterOneIfItCannotGrow) {
    tBuffer buffer = tBuffer::withRoom(10, "{}");
    JsonChain chain(buffer.end(), nullptr, nullptr);
    chain.AddInt("a", 1).AddString("b", "too long for ten").AddInt("c", 3).EnterObject("d").LeaveObject();
    EXPECT_THAT(buffer.text(), StrEq(R"({"a":1})"));
    EXPECT_EQ(chain.cursor(), nullptr);
}

/// Moves the text into ever larger buffers, a few bytes at a time, at most `steps` times.
struct tGrowth {
    tBuffer buffer;
    std::size_t step = 0;
    int steps = 0;
    int calls = 0;

    static char* grow(void* argument, const char* cursor) noexcept {
        tGrowth& self = *static_cast<tGrowth*>(argument);
        if (self.calls == self.steps) return nullptr;
        ++self.calls;
        const auto offset = cursor - self.buffer.text();
        self.buffer = tBuffer(self.buffer.bytes().size() + self.step, self.buffer.text());
        return self.buffer.text() + offset;
    }
};

TEST(JsonChain, GrowsAsOftenAsAMemberNeedsAndContinuesAtTheSamePosition) {
    tGrowth growth{tBuffer::withRoom(0, "{}"), 5, 100};
    JsonChain chain(growth.buffer.end(), tGrowth::grow, &growth);
    chain.AddString("long", "0123456789012345678901234567890").EnterObject("o").AddInt("x", 1);
    EXPECT_THAT(growth.buffer.text(), StrEq(R"({"long":"0123456789012345678901234567890","o":{"x":1}})"));
    EXPECT_EQ(growth.calls, 11);
    EXPECT_TRUE(growth.buffer.wellLaidOut());
}

TEST(JsonChain, StopsPermanentlyIfGrowingFails) {
    tGrowth growth{tBuffer::withRoom(0, "{}"), 4, 2};
    JsonChain chain(growth.buffer.end(), tGrowth::grow, &growth);
    chain.AddInt("a", 1).AddInt("b", 2).EnterObject("o").AddInt("c", 3);
    EXPECT_THAT(growth.buffer.text(), StrEq(R"({"a":1})"));
    EXPECT_EQ(chain.cursor(), nullptr);
    EXPECT_EQ(growth.calls, 2);
}

TEST(JsonChain, WritesNothingAndDoesNotGrowFromANullCursor) {
    tGrowth growth{tBuffer::withRoom(9, "{}"), 4, 2};
    JsonChain chain(nullptr, tGrowth::grow, &growth);
    chain.AddString("a", "b").AddInt("c", 1).AddUInt("d", 1).EnterObject("e");
    EXPECT_EQ(growth.calls, 0);
    EXPECT_EQ(chain.cursor(), nullptr);
}

}  // namespace
