#include "ini/line.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "ini/document.h"

namespace {

using nIni::tLineKind;

struct tRow {
    std::string_view line;
    tLineKind kind;
    std::string_view name;
    std::string_view value;
    char quote = 0;
};

void expectRead(const std::vector<tRow>& rows, std::uint32_t flags) {
    for (const tRow& row : rows) {
        const nIni::tLine line = nIni::readLine(row.line, flags);
        EXPECT_EQ(line.kind, row.kind) << row.line;
        EXPECT_EQ(line.name, row.name) << row.line;
        EXPECT_EQ(line.value, row.value) << row.line;
        EXPECT_EQ(line.quote, row.quote) << row.line;
    }
}

TEST(iniLine, IsACommentAHeaderOrAKey) {
    expectRead({{";", tLineKind::comment, "", ""},
                {" \t; a=b", tLineKind::comment, "", ""},
                {"[a]", tLineKind::header, "a", ""},
                {"\v[\f a b\t] c=d", tLineKind::header, "a b", ""},
                {"[]]", tLineKind::headerWithoutName, "", ""},
                {"[a=b]", tLineKind::header, "a=b", ""},
                {"a=b", tLineKind::key, "a", "b"},
                {" a b\t=\tc d = e; ", tLineKind::key, "a b", "c d = e;"},
                {"a=b\r", tLineKind::key, "a", "b"},
                {"a]=b", tLineKind::key, "a]", "b"},
                {"\xC3\xA4=\xA0", tLineKind::key, "\xC3\xA4", "\xA0"}},
               0);
}

TEST(iniLine, IsMalformedForOneReason) {
    expectRead({{"", tLineKind::blank, "", ""},
                {" \t\v\f", tLineKind::blank, "", ""},
                {"[", tLineKind::headerNotClosed, "", ""},
                {"[a=b", tLineKind::headerNotClosed, "", ""},
                {"[]", tLineKind::headerWithoutName, "", ""},
                {"[ ]", tLineKind::headerWithoutName, "", ""},
                {"a", tLineKind::noSeparator, "", ""},
                {"a:b", tLineKind::noSeparator, "", ""},
                {"=", tLineKind::keyWithoutName, "", ""},
                {" = b", tLineKind::keyWithoutName, "", ""},
                {"a=", tLineKind::keyWithoutValue, "", ""},
                {"a= ", tLineKind::keyWithoutValue, "", ""}},
               0);
}

TEST(iniLine, TellsTheMalformedKindsFromTheOthers) {
    for (const tLineKind kind : {tLineKind::comment, tLineKind::header, tLineKind::key}) {
        EXPECT_FALSE(nIni::isMalformed(kind));
    }
    for (const tLineKind kind : {tLineKind::blank, tLineKind::headerNotClosed, tLineKind::headerWithoutName,
                                 tLineKind::noSeparator, tLineKind::keyWithoutName, tLineKind::keyWithoutValue}) {
        EXPECT_TRUE(nIni::isMalformed(kind));
    }
}

TEST(iniLine, HeedsTheFlags) {
    expectRead({{"a=", tLineKind::key, "a", ""}, {"=", tLineKind::keyWithoutName, "", ""}}, nIni::acceptEmptyValues);
    expectRead({{"a:b", tLineKind::key, "a", "b"},
                {"a:=b", tLineKind::key, "a", "b"},
                {"a=:b", tLineKind::key, "a", ":b"},
                {"a:b=c", tLineKind::key, "a", "b=c"}},
               nIni::colonSeparates);
    expectRead({{"a=\"b\"", tLineKind::key, "a", "b", '"'},
                {"a=\"\"", tLineKind::key, "a", "", '"'},
                {"a=\"", tLineKind::key, "a", "\""},
                {"a=\"b'", tLineKind::key, "a", "\"b'"},
                {"a='b'", tLineKind::key, "a", "'b'"},
                {"a=\" b \"", tLineKind::key, "a", " b ", '"'}},
               nIni::stripDoubleQuotes);
    expectRead({{"a='b'", tLineKind::key, "a", "b", '\''}, {"a=\"b\"", tLineKind::key, "a", "\"b\""}},
               nIni::stripSingleQuotes);
}

TEST(iniLine, RecognisesContinuations) {
    struct {
        std::string_view name;
        std::string_view stem;
        bool startsRun;
    } const continuations[] = {{"Text Line1", "Text", true},  {"Text Line001", "Text", true},
                               {"Text Line2", "Text", false}, {"Text Line11", "Text", false},
                               {" Line1", "", true},          {"a Line1 Line0", "a Line1", false}};
    for (const auto& row : continuations) {
        const auto continuation = nIni::toContinuation(row.name);
        ASSERT_TRUE(continuation) << row.name;
        EXPECT_EQ(continuation->stem, row.stem);
        EXPECT_EQ(continuation->startsRun, row.startsRun) << row.name;
    }
    for (const std::string_view name : {"", "1", "Line1", "Text Line", "Text line1", "Text Line1a", "Text  1"}) {
        EXPECT_FALSE(nIni::toContinuation(name)) << name;
    }
}

TEST(iniLine, RecognisesByteOrderMarks) {
    using std::string_view_literals::operator""sv;
    for (const std::string_view start : {"\xFF\xFE"sv, "\xFE\xFFxx"sv, "\xFF\xFE\0\0"sv, "\0\0\xFE\xFF"sv}) {
        EXPECT_TRUE(nIni::isWide(start));
    }
    for (const std::string_view start : {""sv, "\xFF"sv, "a\xFF\xFE"sv, "\0\0\xFE"sv, "\xEF\xBB\xBF"sv}) {
        EXPECT_FALSE(nIni::isWide(start));
    }
    EXPECT_EQ(nIni::withoutByteOrderMark("\xEF\xBB\xBF[a]"), "[a]");
    EXPECT_EQ(nIni::withoutByteOrderMark("\xEF\xBB"), "\xEF\xBB");
    EXPECT_EQ(nIni::withoutByteOrderMark("a\xEF\xBB\xBF"), "a\xEF\xBB\xBF");
}

}  // namespace
