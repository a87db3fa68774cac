#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "err/JsonReport.h"

namespace {

using zuerr::FindEnd;

/// Returns the offset that FindEnd finds, or -1 for null.
std::ptrdiff_t endOf(std::string text) {
    const char* const end = FindEnd(text.data());
    return end == nullptr ? -1 : end - text.data();
}

/// Expects that each text is a container that ends at its last byte, regardless of the following text.
void expectValid(std::initializer_list<const char*> texts) {
    for (const std::string text : texts) {
        const auto last = static_cast<std::ptrdiff_t>(text.size()) - 1;
        EXPECT_EQ(endOf(text), last) << text;
        EXPECT_EQ(endOf(text + "}],x"), last) << text;
    }
}

void expectInvalid(std::initializer_list<const char*> texts) {
    for (const std::string text : texts) EXPECT_EQ(endOf(text), -1) << text;
}

TEST(JsonReportEnd, IsTheClosingBraceOrBracketOfTheTopLevelContainer) {
    expectValid({"{}", "[]", R"({"a":1})", R"({"a":1,"b":2})", "[[],{},[[{}]]]", R"({"a":{"b":{"c":{}}},"d":[]})"});
}

TEST(JsonReportEnd, IsNullForATextThatDoesNotBeginWithABraceOrBracket) {
    expectInvalid({"", "x", " {}", "1", "\"a\"", "true", "}", "]", "]]", "x]", "(]"});
}

TEST(JsonReportEnd, IsNullForAContainerThatIsClosedByTheOtherKind) {
    expectInvalid({"{", "[", "{]", "[}", "[[]", "[1", "{\"a\"", "{\"a\":", "{\"a\":1", "{\"a\":1]", "[1}"});
}

TEST(JsonReportEnd, AllowsBlanksAroundTokens) {
    expectValid({"{ \t\r\n}", "[ \t\r\n]", "{ \"a\" : 1 , \"b\" :\t[ 1 ,\r\n2 ] }"});
    expectInvalid({"[\v]", "[1\f]", "{\"a\"\v:1}"});
}

TEST(JsonReportEnd, RequiresOneCommaBetweenValuesAndNoneElsewhere) {
    expectInvalid({"{,}", "[,]", "[,1]", "[1,]", "[1,,2]", "[1 2]", R"({"a":1,})", R"({"a":1 "b":2})", R"(["a":1])"});
}

TEST(JsonReportEnd, RequiresAStringAndAColonBeforeEachValueOfAnObject) {
    expectInvalid({R"({"a"})", R"({"a" 1})", R"({"a"::1})", R"({"a":})", "{a:1}", "{1:1}", "{[]:1}", "{:1}"});
}

TEST(JsonReportEnd, AcceptsNoOtherByteAsTheQuoteThatBeginsAKey) {
    expectInvalid({R"({x":1})", R"({'a":1})", R"({":1})", R"({"a":1,b":2})"});
}

TEST(JsonReportEnd, AcceptsNoOtherByteAsTheColon) { expectInvalid({R"({"a",1})", R"({"a"=1})", R"({"a" "1"})"}); }

TEST(JsonReportEnd, IgnoresBracesInStrings) { expectValid({R"({"}":"]"})", R"(["\"]"])"}); }

TEST(JsonReportEnd, AcceptsEightEscapesAndFourHexadecimalDigits) {
    expectValid({R"(["\"\/\\\b\f\n\r\t"])", R"(["\u00e9\uABCD\u0000\u9f9F"])"});
    expectInvalid({R"(["\x"])", R"(["\v"])", R"(["\u12g4"])", R"(["\u123"])", R"(["\u"])", R"(["\U1234"])"});
}

TEST(JsonReportEnd, DoesNotEndAStringAtAnUnknownEscape) {
    expectInvalid({R"(["\])", R"(["\,1])", R"(["\u12])", R"({"a":"\})", R"({"\:1})"});
}

TEST(JsonReportEnd, RejectsOnlyControlCharactersInStrings) {
    expectInvalid({"[\"\n\"]", "[\"\t\"]", "[\"\x1F\"]", "[\"\x01\"]", "{\"\n\":1}"});
    expectValid({"[\" \x7F\x80\xFF\"]", "[\"Ger\xC3\xA4t\"]"});
}

TEST(JsonReportEnd, DoesNotEndAStringAtAControlCharacter) { expectInvalid({"[\"\n]", "[\"a\t]", "{\"\n:1}"}); }

TEST(JsonReportEnd, IsNullForAStringThatDoesNotEnd) {
    expectInvalid({"[\"", "[\"a", "[\"a]", "[\"a\\", R"(["a\")", "[\"\\u", "[\"\\u12", "['a']"});
}

TEST(JsonReportEnd, ReadsNothingPastTheTerminatorOfATextThatEndsInAnEscape) {
    using std::string_literals::operator""s;
    EXPECT_EQ(endOf("[\"\\\0\"]"s), -1);
    EXPECT_EQ(endOf("[\"\\u123\0\"]"s), -1);
}

TEST(JsonReportEnd, AcceptsLeadingZerosALoneMinusSignAndMissingDigitsAfterPointOrExponentSign) {
    expectValid({"[007]", "[-007]", "[-]", "[1.]", "[-.5]", "[-.]", "[1e+]", "[1E-]"});
}

TEST(JsonReportEnd, AcceptsNumbersWithFractionAndExponent) {
    expectValid({"[0]", "[-1]", "[1.5]", "[1e5]", "[1E5]", "[1e+5]", "[1.5e-10]", "[99999999999999999999999999]"});
}

TEST(JsonReportEnd, IsNullForAMalformedNumber) {
    expectInvalid({"[+1]", "[.5]", "[e5]", "[1e]", "[1ee5]", "[1e+-5]", "[--1]", "[1.5.5]", "[0x10]", "[1e5.5]"});
}

TEST(JsonReportEnd, MatchesTheThreeLiteralsExactly) {
    expectValid({"[true,false,null]", R"({"a":true})"});
    expectInvalid({"[tru]", "[True]", "[truex]", "[nul", "[fals]", "[nan]", "[t]", "[n", "[f", "[NULL]"});
    expectInvalid({"[trux]", "[falsy]", "[nuLL]"});
}

TEST(JsonReportEnd, AcceptsNestingOf1024LevelsAndRejectsMore) {
    EXPECT_EQ(endOf(std::string(1024, '[') + std::string(1024, ']')), 2047);
    EXPECT_EQ(endOf(std::string(1025, '[') + std::string(1025, ']')), -1);
    EXPECT_EQ(endOf(std::string(1'000'000, '[')), -1);
}

TEST(JsonReportEnd, RemembersTheKindOfEveryLevel) {
    EXPECT_EQ(endOf(R"([{"a":[{"b":[]}]}])"), 17);
    EXPECT_EQ(endOf(R"([{"a":[{"b":[}]}]])"), -1);
    EXPECT_EQ(endOf(R"([{"a":[1,"b":2]}])"), -1);
}

}  // namespace
