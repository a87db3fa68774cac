// What parseFile makes of a file as a whole.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/iniFile.h"

namespace {

using std::string_view_literals::operator""sv;

TEST(iniParserFile, AUtf8MarkIsNoPartOfTheText) {
    EXPECT_EQ(parsed("\xEF\xBB\xBF[s]\nk=v"), "[s]@1\nk=v@2\n");
    EXPECT_EQ(parsed("\xEF\xBB\xBF"), "");
    EXPECT_EQ(parsed("[s]\n\xEF\xBB\xBFk=v"), "[s]@1\n\xEF\xBB\xBFk=v@2\n");
}

TEST(iniParserFile, WideTextIsRefused) {
    EXPECT_EQ(parsed("\xFF\xFE[\0s\0]\0"sv), "-3");
    EXPECT_EQ(parsed("\xFE\xFF\0[\0s\0]"sv), "-3");
    EXPECT_EQ(parsed("\xFF\xFE\0\0[\0\0\0"sv), "-3");
    EXPECT_EQ(parsed("\0\0\xFE\xFF\0\0\0["sv), "-3");
    EXPECT_EQ(parsed("\xFF\xFE"), "-3");
    EXPECT_EQ(parsed("\xFE\xFF"), "-3");
    EXPECT_EQ(parsed("\xFF\xFE\0"sv), "-3");
}

TEST(iniParserFile, AnIncompleteByteOrderMarkIsText) {
    for (const std::string_view start : {"\xEF"sv, "\xEF\xBB"sv, "\xEF\xBB\xBE"sv, "\xFF"sv, "\xFE"sv, "\xFE\xFE"sv}) {
        const std::string name(start);
        EXPECT_EQ(parsed(name), "error@1\n") << testing::PrintToString(start) << " is a malformed line";
        EXPECT_EQ(parsed(name + "=v\n", nIni::acceptEmptyValues | nIni::colonSeparates),
                  "[(null)]@-1\n" + name + "=v@1\n");
    }
    EXPECT_EQ(parsed("\0\0\xFE"sv), "error@1\n");
    EXPECT_EQ(parsed("\0\0\xFE\xFE=v"sv, nIni::colonSeparates), "[(null)]@-1\n\xFE\xFE=v@3\nerror@1\n");
}

TEST(iniParserFile, TextWithCarriageReturnsIsNumberedByLines) {
    EXPECT_EQ(parsed("[s]\r\na=1\r\n\r\nb=2\r\n"), "[s]@1\na=1@2\nb=2@4\nerror@3\n");
}

TEST(iniParserFile, ALineFeedBeforeTheFirstLineIsSkippedAndNotCounted) {
    EXPECT_EQ(parsed("\n[s]\nk=v"), "[s]@1\nk=v@2\n");
}

TEST(iniParserFile, TwoLineFeedsAtTheEndMakeAMalformedLine) {
    EXPECT_EQ(parsed("[s]\nk=v\n\n"), "[s]@1\nk=v@2\nerror@3\n");
    EXPECT_EQ(parsed("[s]\r\nk=v\r\n\r\n"), "[s]@1\nk=v@2\nerror@3\n");
}

TEST(iniParserFile, BytesAreTakenAsTheyAre) {
    EXPECT_EQ(parsed("[\xC3\xA4]\n\x01\xFF=\xC0\x80\n"), "[\xC3\xA4]@1\n\x01\xFF=\xC0\x80@2\n");
}

TEST(iniParserFile, AMissingFileGivesMinus22) {
    nIni::tDocument document;
    EXPECT_EQ(parseFile(document, L"no such file.ini"), -22);
    EXPECT_EQ(parseFile(document, L""), -22);
}

TEST(iniParserFile, APathThatCanNameNoFileGivesMinus22) {
    const std::wstring folder = tIniFile("").widePath();
    nIni::tDocument document;
    for (const std::wstring& name : {std::wstring(5000, L'x'), std::wstring(100'000, L'/'), std::wstring(L"a\x1/b"),
                                     std::wstring(L"\"/\""), std::wstring(L"\xD800/x"), std::wstring(L"\xDC00/x")}) {
        EXPECT_EQ(parseFile(document, (folder + L"/" + name).c_str()), -22) << name.size();
    }
}

TEST(iniParserFile, PathAndTimeAreKeptOnSuccess) {
    const tIniFile file("[s]\nbad");
    using std::chrono::sys_days, std::chrono::year, std::chrono::hours, std::chrono::seconds;
    const auto time = sys_days(year(2020) / 1 / 2) + hours(3) + seconds(4);
    last_write_time(file.path(), std::chrono::file_clock::from_sys(time));
    nIni::tDocument document;
    ASSERT_EQ(file.parseInto(document), 0);
    EXPECT_EQ(document.filePath.data(), file.widePath());
    const std::uint64_t secondsSince1601 = 18263ULL * 86400 + 3ULL * 3600 + 4 + 11644473600;
    EXPECT_EQ(document.fileTime, secondsSince1601 * 10'000'000);
}

TEST(iniParserFile, AFailureLeavesPathAndTimeOfTheLastSuccess) {
    const tIniFile file("[s]");
    nIni::tDocument document;
    ASSERT_EQ(file.parseInto(document), 0);
    const std::uint64_t time = document.fileTime;
    EXPECT_NE(time, 0U);
    EXPECT_EQ(tIniFile("\xFF\xFE").parseInto(document), -3);
    EXPECT_EQ(parseFile(document, L"no such file.ini"), -22);
    EXPECT_EQ(document.filePath.data(), file.widePath());
    EXPECT_EQ(document.fileTime, time);
}

TEST(iniParserFile, ADocumentMayBeReadAgainByItsOwnPath) {
    const tIniFile file("[s]\nk=1");
    nIni::tDocument document;
    ASSERT_EQ(file.parseInto(document), 0);
    file.write("[s]\nk=2");
    ASSERT_EQ(parseFile(document, document.filePath.data()), 0);
    EXPECT_EQ(describe(document), "[s]@1\nk=2@2\n");
    EXPECT_EQ(document.filePath.data(), file.widePath());
}

TEST(iniParserFile, APathThatDoesNotFitLeavesItsFieldEmpty) {
    const std::size_t directorySize = tIniFile("", "").path().wstring().size();
    for (const std::size_t size : {255U, 256U}) {
        // The random part of the directory's name varies in length.
        nIni::tDocument document;
        for (std::size_t tries = 0;; ++tries) {
            ASSERT_LT(tries, 1000U);
            const tIniFile file("[s]", std::string(size - directorySize, 'x'));
            if (file.widePath().size() != size) continue;
            document.filePath.fill(L'?');
            ASSERT_EQ(file.parseInto(document), 0);
            EXPECT_EQ(document.filePath.data(), size == 255 ? file.widePath() : std::wstring());
            EXPECT_EQ(document.filePath.back(), 0);
            break;
        }
        EXPECT_EQ(describe(document), "[s]@1\n");
        EXPECT_NE(document.fileTime, 0U);
    }
}

TEST(iniParserFile, APathMayHoldAnyCharacters) {
    const tIniFile file("[s]", std::filesystem::path(u"\x63D2\x4EF6 \xE4") / u"\x914D\x7F6E.ini");
    nIni::tDocument document;
    ASSERT_EQ(file.parseInto(document), 0);
    EXPECT_EQ(describe(document), "[s]@1\n");
    EXPECT_EQ(document.filePath.data(), file.widePath());
}

TEST(iniParserFile, ADocumentMayBeUsedForOneFileAfterTheOther) {
    nIni::tDocument document;
    ASSERT_EQ(tIniFile("[a]\nk=1\nbad\n[b]\n").parseInto(document), 0);
    ASSERT_NE(findSection(document, "b"), nullptr);
    ASSERT_EQ(tIniFile("k=2\n[c]\nk=3\n").parseInto(document), 0);
    EXPECT_EQ(describe(document), "[c]@2\nk=3@3\n") << "no error line, no section, no current section is left";
    EXPECT_EQ(findSection(document, "b"), nullptr);
}

TEST(iniParserFile, LookUpsAfterASecondFileKnowNothingOfTheFirst) {
    std::string text;
    for (char name = 'a'; name <= 'z'; ++name) text.append("[").append(1, name).append("]\nk=v\n");
    nIni::tDocument document;
    ASSERT_EQ(tIniFile(text).parseInto(document), 0);
    EXPECT_EQ(findSection(document, "c"), &document.sections[2]);
    const std::string withoutTheFirst = text.substr(8);
    ASSERT_EQ(tIniFile(withoutTheFirst).parseInto(document), 0);
    ASSERT_EQ(document.sections.size(), 25U);
    EXPECT_EQ(findSection(document, "c"), &document.sections[1]);
    EXPECT_EQ(findSection(document, "a"), nullptr);
}

TEST(iniParserFile, AFileThatIsRefusedLeavesTheDocument) {
    nIni::tDocument document;
    ASSERT_EQ(tIniFile("[a]\nbad\n").parseInto(document), 0);
    EXPECT_EQ(tIniFile("\xFF\xFE").parseInto(document), -3);
    EXPECT_EQ(describe(document), "[a]@1\nerror@2\n");
}

TEST(iniParserFile, TheOptionsAreNotTouched) {
    nIni::tDocument document;
    document.flags = 15;
    document.mergeDuplicates = 0;
    document.caseSensitive = 1;
    document.lastKeyLine = 7;
    ASSERT_EQ(tIniFile("[a]\nk:v").parseInto(document), 0);
    EXPECT_EQ(document.flags, 15U);
    EXPECT_EQ(document.mergeDuplicates, 0);
    EXPECT_EQ(document.caseSensitive, 1);
    EXPECT_EQ(document.lastKeyLine, 7);
}

/// Appends the lines "k0=0", "k1=1", ... for as long as it lives, each in one piece, and no more than `most` of them.
class tGrowth {
public:
    tGrowth(const std::filesystem::path& path, int most)
        : file_(path, std::ios::binary | std::ios::app), thread_([this, most] {
              for (int i = 0; i < most && !done_; ++i) append(std::to_string(i));
          }) {}
    ~tGrowth() {
        done_ = true;
        thread_.join();
    }
    tGrowth(const tGrowth&) = delete;
    tGrowth& operator=(const tGrowth&) = delete;

    std::atomic<std::size_t> lines = 0;

private:
    void append(const std::string& number) {
        file_ << std::string("k").append(number).append("=").append(number).append("\n") << std::flush;
        ++lines;
    }

    std::ofstream file_;
    std::atomic<bool> done_ = false;
    std::thread thread_;
};

/// Checks that the document holds the first so many lines of a tGrowth. The last one may be cut short, and is then
/// malformed if its value was not reached.
void expectFirstLines(const nIni::tDocument& document) {
    ASSERT_EQ(document.sections.size(), 1U);
    const std::vector<nIni::tKey>& keys = document.sections[0].keys;
    const auto count = static_cast<std::int32_t>(keys.size());
    for (std::int32_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        const nIni::tKey& key = keys[static_cast<std::size_t>(i)];
        ASSERT_EQ(key.name, std::string("k").append(number));
        ASSERT_TRUE(key.value == number || (i == count - 1 && number.starts_with(key.value))) << key.value;
        ASSERT_EQ(key.line, i + 2);
    }
    EXPECT_TRUE(document.firstErrorLine == -1 || document.firstErrorLine == count + 2) << document.firstErrorLine;
}

TEST(iniParserFile, AFileThatGrowsWhileItIsReadIsReadUpToWhereItWasSeenToEnd) {
    constexpr int lines = 20'000;
    const tIniFile file("[s]\n");
    const tGrowth growth(file.path(), lines);
    nIni::tDocument document;
    std::size_t before = 0;
    for (; before < lines; before = growth.lines) {
        ASSERT_EQ(file.parseInto(document), 0);
        expectFirstLines(document);
        ASSERT_GE(document.sections[0].keys.size(), before);
    }
}

}  // namespace
