#include "tool/explain/code.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace nExplain {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

TEST(nExplainCode, ReadsACodeInEachOfItsForms) {
    for (const char* const text : {"-52004", "0xFFFF34DC", "0Xffff34dc", "4294915292"}) {
        EXPECT_EQ(parseCode(text), -52004) << text;
    }
    EXPECT_EQ(parseCode("0"), 0);
    EXPECT_EQ(parseCode("17"), 17);
    EXPECT_EQ(parseCode("0x7FFFFFFF"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(parseCode("-2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(parseCode("2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(parseCode("4294967295"), -1);
}

TEST(nExplainCode, ReadsNothingElseAsACode) {
    for (const char* const text : {"", "-", "0x", "0x-5", "-0x5", "+5", " 5", "5 ", "5x", "0x5g", "Transport",
                                   "4294967296", "-2147483649", "0x100000000", "99999999999999999999"}) {
        EXPECT_EQ(parseCode(text), std::nullopt) << text;
    }
}

TEST(nExplainCode, KnowsANumberThatIsTooLarge) {
    for (const char* const text : {"99999999999", "4294967296", "-2147483649", "0x1FFFFFFFF", "0X100000000",
                                   "99999999999999999999999999", "0xFFFFFFFFFFFFFFFFF"}) {
        EXPECT_TRUE(isTooLarge(text)) << text;
    }
    for (const char* const text :
         {"", "-", "0x", "-52006", "0xFFFFFFFF", "99999999999x", "0x1FFFFFFFG", "-0x1FFFFFFFF", "Transport"}) {
        EXPECT_FALSE(isTooLarge(text)) << text;
    }
}

TEST(nExplainCode, AsksWhetherTheMinusSignOfAHostsCodeIsMissing) {
    EXPECT_THAT(explainCode(52006).summary,
                testing::EndsWith(" Did you mean -52006, which is one of the host's codes?"));
    for (const std::int32_t code : {0, 5, 5001, 52001, -52006, std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_THAT(explainCode(code).summary, testing::Not(HasSubstr("Did you mean"))) << code;
    }
}

TEST(nExplainCode, ShowsEightHexadecimalDigits) {
    EXPECT_EQ(hexadecimal(-52005), "0xFFFF34DB");
    EXPECT_EQ(hexadecimal(0), "0x00000000");
    EXPECT_EQ(hexadecimal(0x1A2B3C4D), "0x1A2B3C4D");
}

TEST(nExplainCode, KnowsWhatWindowsCallsTheCommonCodes) {
    const auto violation = findSystemCode(*parseCode("0xC0000005"));
    ASSERT_TRUE(violation);
    EXPECT_EQ(violation->name, "STATUS_ACCESS_VIOLATION");
    EXPECT_EQ(violation->meaning, "an access violation");
    for (const char* const code :
         {"0x80000003", "0x80004001", "0x80004002", "0x80004003", "0x80004005", "0x8000FFFF", "0x80040154",
          "0x800401F0", "0x80070002", "0x80070005", "0x8007000E", "0x80070057", "0x8007007E", "0x800706BA",
          "0xC0000017", "0xC000001D", "0xC000007B", "0xC0000094", "0xC00000FD", "0xC0000135", "0xC0000139",
          "0xC0000142", "0xC0000374", "0xC0000409", "0xC06D007E", "0xC06D007F", "0xE0434352", "0xE06D7363"}) {
        const auto found = findSystemCode(*parseCode(code));
        ASSERT_TRUE(found) << code;
        EXPECT_FALSE(found->name.empty() || found->meaning.empty()) << code;
    }
}

TEST(nExplainCode, SaysWhichErrorOfWindowsACodeContains) {
    const auto found = findSystemCode(*parseCode("0x80070643"));
    ASSERT_TRUE(found);
    EXPECT_THAT(found->name, IsEmpty());
    EXPECT_EQ(found->meaning, "Windows error 1603, which `net helpmsg 1603` explains");
}

TEST(nExplainCode, DoesNotTakeOtherNumbersForCodesOfWindows) {
    for (const char* const code : {"-1", "-52005", "0x80060005", "0x80080005", "0"}) {
        EXPECT_FALSE(findSystemCode(*parseCode(code))) << code;
    }
}

struct tOriginRow {
    std::int32_t code;
    tOrigin origin;
    const char* summary;
};

TEST(nExplainCode, SaysWhereACodeComesFrom) {
    for (const tOriginRow& row : {tOriginRow{0, tOrigin::success, "Success."},
                                  {3, tOrigin::warning, "the plug-in has started"},
                                  {-52002, tOrigin::host, "One of the host's codes."},
                                  {-52000, tOrigin::host, "One of the host's codes."},
                                  {-5001, tOrigin::parser, "parser"},
                                  {-52001, tOrigin::unused, "against the rules"},
                                  {-7, tOrigin::pluginsOwn, "the plug-in's own"}}) {
        const tCodeExplanation explanation = explainCode(row.code);
        EXPECT_EQ(explanation.code, row.code);
        EXPECT_EQ(explanation.origin, row.origin) << row.code;
        EXPECT_THAT(explanation.summary, HasSubstr(row.summary));
    }
}

TEST(nExplainCode, ContainsWhatBothTablesSay) {
    const tCodeExplanation own = explainCode(*parseCode("0xC0000005"));
    EXPECT_THAT(own.meanings, SizeIs(1));
    EXPECT_TRUE(own.systemCode);
    const tCodeExplanation host = explainCode(-52005);
    EXPECT_THAT(host.meanings, SizeIs(5));
    EXPECT_FALSE(host.systemCode);
}

}  // namespace
}  // namespace nExplain
