#include "stdpath/utf.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

namespace {

std::string text(std::u8string_view utf8) { return {utf8.begin(), utf8.end()}; }

std::string toUtf8(std::u16string_view wide) {
    std::string result;
    nStdPath::wideToUtf8(wide.data(), wide.data() + wide.size(), result);
    return result;
}

/// A text with every kind of character, as the compiler encodes it in either form.
constexpr std::u16string_view utf16Sample =
    u"C:\\Daten \x7F\u0080\u07FF\u0800计划\uD7FF\uE000\uFFFF\U00010000🚀\U0010FFFF";
constexpr std::u8string_view utf8Sample =
    u8"C:\\Daten \x7F\u0080\u07FF\u0800计划\uD7FF\uE000\uFFFF\U00010000🚀\U0010FFFF";

TEST(utfWideToUtf8, EncodesATextLikeTheCompiler) { EXPECT_EQ(toUtf8(utf16Sample), text(utf8Sample)); }

TEST(utfWideToUtf8, AppendsToTheExistingText) {
    std::string result = "before ";
    const std::u16string_view wide = u"after";
    nStdPath::wideToUtf8(wide.begin(), wide.end(), result);
    EXPECT_EQ(result, "before after");
}

TEST(utfWideToUtf8, AppendsNothingForAnEmptyRange) {
    std::string result = "as it was";
    nStdPath::wideToUtf8(nullptr, nullptr, result);
    EXPECT_EQ(result, "as it was");
}

TEST(utfWideToUtf8, KeepsZeros) { EXPECT_EQ(toUtf8({u"a\0b\0", 4}), std::string("a\0b\0", 4)); }

TEST(utfWideToUtf8, ChangesTheLengthAtTheLimitsOfTheRanges) {
    EXPECT_EQ(toUtf8(u"\x007F"), "\x7F");
    EXPECT_EQ(toUtf8(u"\x0080"), "\xC2\x80");
    EXPECT_EQ(toUtf8(u"\x07FF"), "\xDF\xBF");
    EXPECT_EQ(toUtf8(u"\x0800"), "\xE0\xA0\x80");
    EXPECT_EQ(toUtf8(u"\xFFFF"), "\xEF\xBF\xBF");
    EXPECT_EQ(toUtf8(u"\xD800\xDC00"), "\xF0\x90\x80\x80");
    EXPECT_EQ(toUtf8(u"\xDBFF\xDFFF"), "\xF4\x8F\xBF\xBF");
}

TEST(utfWideToUtf8, PairsAHighSurrogateWithAnyFollowingUnit) {
    EXPECT_EQ(toUtf8(std::u16string{0xD800, 'A'}), "\xE2\x91\x81");         // U+2441
    EXPECT_EQ(toUtf8(std::u16string{0xD800, 0}), "\xE2\x90\x80");           // U+2400
    EXPECT_EQ(toUtf8(std::u16string{0xD800, 0xD800}), "\xEF\xB0\x80");      // U+FC00
    EXPECT_EQ(toUtf8(std::u16string{0xDBFF, 0xFFFF}), "\xF4\x91\xBF\xBF");  // 0x111FFF
    EXPECT_EQ(toUtf8(std::u16string{0xD800, 'A', 'B'}),
              "\xE2\x91\x81"
              "B");  // but only with one unit
}

TEST(utfWideToUtf8, WritesThreeBytesForALoneLowSurrogate) {
    EXPECT_EQ(toUtf8(std::u16string{0xDC00}), "\xED\xB0\x80");
    EXPECT_EQ(toUtf8(std::u16string{0xDFFF, 'x'}), "\xED\xBF\xBFx");
    EXPECT_EQ(toUtf8(std::u16string{0xDC00, 0xD83D, 0xDE80}), "\xED\xB0\x80\xF0\x9F\x9A\x80");
}

TEST(utfWideToUtf8, WritesThreeBytesForAHighSurrogateAtTheEnd) {
    EXPECT_EQ(toUtf8(std::u16string{'x', 0xD800}), "x\xED\xA0\x80");
    EXPECT_EQ(toUtf8(std::u16string{0xDBFF}), "\xED\xAF\xBF");
}

TEST(utfFileNames, AreConvertedLikeTheCompilersTexts) {
    EXPECT_EQ(nStdPath::fileNameToUtf8(utf16Sample), text(utf8Sample));
    EXPECT_EQ(nStdPath::fileNameFromUtf8(text(utf8Sample)), utf16Sample);
}

TEST(utfFileNames, MayBeEmpty) {
    EXPECT_EQ(nStdPath::fileNameToUtf8(u""), "");
    EXPECT_EQ(nStdPath::fileNameFromUtf8(""), u"");
}

TEST(utfFileNames, SurviveTheRoundTripWithAnyUnits) {
    for (char32_t unit = 0; unit <= 0xFFFF; ++unit) {
        const std::u16string name{static_cast<char16_t>(unit)};
        ASSERT_EQ(nStdPath::fileNameFromUtf8(nStdPath::fileNameToUtf8(name)), name) << std::hex << +unit;
    }
}

TEST(utfFileNames, SurviveTheRoundTripWithAnyCombinationOfUnits) {
    constexpr std::array<char16_t, 13> units{0,      'A',    0x7F,   0x80,   0x7FF,  0x800, 0xD7FF,
                                             0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFF};
    std::set<std::string> texts;
    for (const char16_t a : units) {
        for (const char16_t b : units) {
            for (const char16_t c : units) {
                const std::u16string name{a, b, c};
                const std::string utf8 = nStdPath::fileNameToUtf8(name);
                ASSERT_EQ(nStdPath::fileNameFromUtf8(utf8), name);
                ASSERT_TRUE(texts.insert(utf8).second) << "two names share one text";
            }
        }
    }
}

TEST(utfFileNames, DoNotPairASurrogateWithAnOrdinaryCharacter) {
    EXPECT_EQ(nStdPath::fileNameToUtf8(std::u16string{0xD800, 'A'}),
              "\xED\xA0\x80"
              "A");
}

TEST(utfFileNames, HaveAReplacementCharacterForEachByteThatBeginsNoCharacter) {
    const auto name = [](std::string_view bytes) { return nStdPath::fileNameFromUtf8(bytes); };
    EXPECT_EQ(name("a\x80z"), u"a\uFFFDz");  // a continuation byte without a lead byte
    EXPECT_EQ(name("\xBF"), u"\uFFFD");
    EXPECT_EQ(name("\xC3"), u"\uFFFD");              // a lead byte at the end
    EXPECT_EQ(name({"\xC3\xA4", 1}), u"\uFFFD");     // a continuation byte past the end of the text
    EXPECT_EQ(name("\xC3z"), u"\uFFFDz");            // a lead byte without a continuation byte
    EXPECT_EQ(name("\xE8\xAE"), u"\uFFFD\uFFFD");    // too few continuation bytes, at the end
    EXPECT_EQ(name("\xE8\xAEz"), u"\uFFFD\uFFFDz");  // and before another character
    EXPECT_EQ(name("\xF0\x9F\x9A"), u"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(name("\xC1\xBF"), u"\uFFFD\uFFFD");  // overlong
    EXPECT_EQ(name("\xE0\x9F\xBF"), u"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(name("\xF0\x8F\xBF\xBF"), u"\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(name("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD");  // above U+10FFFF
    EXPECT_EQ(name("\xF8\x88\x80\x80\x80z"), u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDz");
    EXPECT_EQ(name("\xFE\xFF"), u"\uFFFD\uFFFD");
}

}  // namespace
