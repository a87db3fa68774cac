#include "ini/parser.h"

#include <gtest/gtest.h>

#include <cctype>
#include <chrono>

#include "tests/support/iniFile.h"

namespace {

using nIni::acceptEmptyValues;
using nIni::colonSeparates;
using nIni::stripDoubleQuotes;
using nIni::stripSingleQuotes;
using std::string_view_literals::operator""sv;

TEST(IniParser, SectionsAndKeysKeepTheOrderOfTheFile) {
    EXPECT_EQ(parsed("[b]\nz=1\ny=2\n[a]\nx=3\n"), "[b]@1\nz=1@2\ny=2@3\n[a]@4\nx=3@5\n");
}

TEST(IniParser, AnEmptyFileGivesAnEmptyDocument) { EXPECT_EQ(parsed(""), ""); }

// --- lines of every kind ---

TEST(IniParser, WhiteSpaceAroundKeyAndValueIsDropped) {
    EXPECT_EQ(parsed("[s]\n \t\v\f key \t=\v\f inner space \t\n"), "[s]@1\nkey=inner space@2\n");
}

TEST(IniParser, OnlyWhatIsspaceCallsSpaceIsDropped) {
    std::ostringstream text;
    std::ostringstream expected;
    text << "[s]\n";
    expected << "[s]@1\n";
    int line = 1;
    for (int byte = 1; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        if (c == '\n' || c == '\r') continue;
        text << 'k' << byte << '=' << c << 'v' << c << '\n';
        const std::string kept(std::isspace(byte) != 0 ? 0 : 1, c);
        expected << 'k' << byte << '=' << kept << 'v' << kept << '@' << ++line << '\n';
    }
    EXPECT_EQ(parsed(text.str(), 0), expected.str());
}

TEST(IniParser, ACommentMayStandBehindWhiteSpace) { EXPECT_EQ(parsed("; a=b\n[s]\n \t; c=d\n"), "[s]@2\n"); }

TEST(IniParser, ASemicolonBehindAValueBelongsToIt) { EXPECT_EQ(parsed("[s]\nk=v ; w"), "[s]@1\nk=v ; w@2\n"); }

TEST(IniParser, NoOtherCharacterStartsAComment) {
    EXPECT_EQ(parsed("[s]\n#k=v\n"), "[s]@1\n#k=v@2\n");
    EXPECT_EQ(parsed("[s]\n# k\n"), "[s]@1\nerror@2\n");
}

TEST(IniParser, SpaceInsideTheBracketsIsDroppedAndTextBehindThemIgnored) {
    EXPECT_EQ(parsed(" [ \t a b \t ] c=d ; e ]\nk=v"), "[a b]@1\nk=v@2\n");
}

TEST(IniParser, ASectionNameRunsToTheFirstBracket) {
    EXPECT_EQ(parsed("[a]]\n[[b]\n[c;d=e]\n"), "[a]@1\n[[b]@2\n[c;d=e]@3\n");
}

TEST(IniParser, AHeaderWithoutBracketOrNameIsMalformed) {
    EXPECT_EQ(parsed("[a"), "error@1\n");
    EXPECT_EQ(parsed("[]"), "error@1\n");
    EXPECT_EQ(parsed("[ \t ]"), "error@1\n");
    EXPECT_EQ(parsed("["), "error@1\n");
    EXPECT_EQ(parsed("[a=b"), "error@1\n") << "and it is no key either";
}

TEST(IniParser, KeysBehindAMalformedHeaderStayInTheSectionBefore) {
    EXPECT_EQ(parsed("[a]\n[b\nk=v"), "[a]@1\nk=v@3\nerror@2\n");
}

TEST(IniParser, TheFirstSeparatorCounts) { EXPECT_EQ(parsed("[s]\na=b=c\nd = = e\n"), "[s]@1\na=b=c@2\nd== e@3\n"); }

TEST(IniParser, AKeyMayHoldBracketsAndSemicolonsInside) { EXPECT_EQ(parsed("[s]\na;b[c]=d"), "[s]@1\na;b[c]=d@2\n"); }

TEST(IniParser, ALineWithoutSeparatorOrKeyIsMalformed) {
    EXPECT_EQ(parsed("[s]\nkey\n"), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[s]\n=value\n"), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[s]\n \t =value\n"), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[s]\n=\n"), "[s]@1\nerror@2\n");
}

TEST(IniParser, ABlankLineBetweenKeysIsMalformed) {
    EXPECT_EQ(parsed("[s]\na=1\n\nb=2\n"), "[s]@1\na=1@2\nb=2@4\nerror@3\n");
    EXPECT_EQ(parsed("[s]\na=1\n \t\nb=2\n"), "[s]@1\na=1@2\nb=2@4\nerror@3\n");
}

TEST(IniParser, OnlyTheFirstMalformedLineIsRecorded) {
    EXPECT_EQ(parsed("[s]\nbad\n\n[worse\nk=v\n"), "[s]@1\nk=v@5\nerror@2\n");
}

TEST(IniParser, AnEmptyValueIsAcceptedOnlyByFlag) {
    EXPECT_EQ(parsed("[s]\na=\nb= \t\n", acceptEmptyValues), "[s]@1\na=@2\nb=@3\n");
    EXPECT_EQ(parsed("[s]\na=\nb=1\n", 0), "[s]@1\nb=1@3\nerror@2\n");
    EXPECT_EQ(parsed("[s]\na= \t\n", 0), "[s]@1\nerror@2\n");
}

TEST(IniParser, QuotesWithNothingBetweenThemAreNoEmptyValue) {
    EXPECT_EQ(parsed("[s]\na=\"\"\n", stripDoubleQuotes), "[s]@1\na=\"@2\n");
}

// --- quotes ---

TEST(IniParser, DoubleQuotesGoAndAreRecorded) {
    EXPECT_EQ(parsed("[s]\na= \" b \" \n", stripDoubleQuotes), "[s]@1\na= b \"@2\n");
    EXPECT_EQ(parsed("[s]\na=\"b\"\n", stripSingleQuotes), "[s]@1\na=\"b\"@2\n") << "kept without the flag";
}

TEST(IniParser, SingleQuotesGoAndAreRecordedByTheirFlag) {
    EXPECT_EQ(parsed("[s]\na=' b '\n", stripSingleQuotes), "[s]@1\na= b '@2\n");
    EXPECT_EQ(parsed("[s]\na='b'\n", 3), "[s]@1\na='b'@2\n") << "kept without the flag";
}

TEST(IniParser, TheQuoteIsItsCharacterCode) {
    nIni::tDocument document;
    document.flags = stripDoubleQuotes | stripSingleQuotes;
    ASSERT_EQ(tIniFile("[s]\na=\"x\"\nb='x'\nc=x").parseInto(document), 0);
    EXPECT_EQ(document.sections[0].keys[0].quote, 34);
    EXPECT_EQ(document.sections[0].keys[1].quote, 39);
    EXPECT_EQ(document.sections[0].keys[2].quote, 0);
}

TEST(IniParser, OneQuoteCharacterAloneStays) {
    EXPECT_EQ(parsed("[s]\na=\"\nb='\n", 7), "[s]@1\na=\"@2\nb='@3\n");
    nIni::tDocument document;
    ASSERT_EQ(tIniFile("[s]\na=\"").parseInto(document), 0);
    EXPECT_EQ(document.sections[0].keys[0].quote, 0);
}

TEST(IniParser, QuotesThatDoNotEncloseTheValueStay) {
    EXPECT_EQ(parsed("[s]\na=\"b\nc=d\"\ne=\"f'\ng=h\"i\"j\n", 7), "[s]@1\na=\"b@2\nc=d\"@3\ne=\"f'@4\ng=h\"i\"j@5\n");
}

TEST(IniParser, OnlyTheOuterPairOfQuotesGoes) {
    EXPECT_EQ(parsed("[s]\na=\"\"b\"\"\nc=\"'d'\"\ne='\"f\"'\ng=\"h\\\"\"\n", 7),
              "[s]@1\na=\"b\"\"@2\nc='d'\"@3\ne=\"f\"'@4\ng=h\\\"\"@5\n");
}

// --- the colon ---

TEST(IniParser, AColonIsPartOfTheKeyWithoutItsFlag) {
    EXPECT_EQ(parsed("[s]\na:b=c\nd:=e\nf:g\n"), "[s]@1\na:b=c@2\nd:=e@3\nerror@4\n");
}

TEST(IniParser, AColonSeparatesByFlag) {
    const std::uint32_t flags = colonSeparates | acceptEmptyValues;
    EXPECT_EQ(parsed("[s]\na:b\nc : d=e\nf=g:h\ni:=j\nk: =l\nm=:n\no:\np::=q\nr:==s\n", flags),
              "[s]@1\na=b@2\nc=d=e@3\nf=g:h@4\ni=j@5\nk==l@6\nm=:n@7\no=@8\np=:=q@9\nr==s@10\n");
    EXPECT_EQ(parsed("[s]\n:a\n", flags), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[s]\n:=a\n", flags), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[s]\na:=\n", colonSeparates), "[s]@1\nerror@2\n") << "an empty value";
}

// --- keys before the first section ---

TEST(IniParser, KeysBeforeTheFirstSectionAreIgnored) { EXPECT_EQ(parsed("a=b\n[s]\nc=d\n"), "[s]@2\nc=d@3\n"); }

TEST(IniParser, ALineBeforeTheFirstSectionMayBeMalformed) { EXPECT_EQ(parsed("a\n[s]\n"), "[s]@2\nerror@1\n"); }

TEST(IniParser, KeysBeforeTheFirstSectionMakeASectionOfTheirOwnWithTheColonFlag) {
    EXPECT_EQ(parsed(";\na=b\nc:d\na=e\n[s]\nf=g\n", colonSeparates), "[(null)]@-1\na=e@4\nc=d@3\n[s]@5\nf=g@6\n");
    EXPECT_EQ(parsed("a=b\n[(NULL)]\nc=d\n", colonSeparates), "[(null)]@2\na=b@1\nc=d@3\n");
}

// --- duplicates ---

TEST(IniParser, ARepeatedHeaderReopensItsSectionAndMovesItsLine) {
    EXPECT_EQ(parsed("[Service]\na=1\n[t]\n[SERVICE]\nb=2\n"), "[Service]@4\na=1@2\nb=2@5\n[t]@3\n");
    EXPECT_EQ(parsed("[s]\na=1\n[s]\nb=2\n"), "[s]@3\na=1@2\nb=2@4\n");
}

TEST(IniParser, TheLastOfRepeatedKeysWinsInTheFirstOnesPlace) {
    EXPECT_EQ(parsed("[s]\nPath=a\nb=c\nPATH=\"d\"\n"), "[s]@1\nPath=d\"@4\nb=c@3\n");
    EXPECT_EQ(parsed("[s]\nPath=\"a\"\nPath=b\n"), "[s]@1\nPath=b@3\n") << "the quote is the new value's";
    EXPECT_EQ(parsed("[s]\nPath=a\nPath=\n"), "[s]@1\nPath=@3\n");
}

TEST(IniParser, RepeatedKeysAreToldApartBySection) {
    EXPECT_EQ(parsed("[s]\na=1\n[t]\na=2\n[s]\na=3\n"), "[s]@5\na=3@6\n[t]@3\na=2@4\n");
}

TEST(IniParser, AMalformedRepetitionChangesNothing) {
    EXPECT_EQ(parsed("[s]\na=1\na=\n", 0), "[s]@1\na=1@2\nerror@3\n");
}

TEST(IniParser, NamesThatDifferInCaseAreTwoWhenCaseCounts) {
    nIni::tDocument document;
    document.caseSensitive = 1;
    ASSERT_EQ(tIniFile("[s]\na=1\nA=2\na=3\n[S]\n").parseInto(document), 0);
    EXPECT_EQ(describe(document), "[s]@1\na=3@4\nA=2@3\n[S]@5\n");
}

TEST(IniParser, LettersOutsideAsciiAreNotFolded) {
    EXPECT_EQ(parsed("[s]\n\xC4=1\n\xE4=2\n@=3\n`=4\n{=5\n[=6\n"),
              "[s]@1\n\xC4=1@2\n\xE4=2@3\n@=3@4\n`=4@5\n{=5@6\nerror@7\n");
}

TEST(IniParser, NothingIsMergedWhenTheDocumentSaysSo) {
    nIni::tDocument document;
    document.mergeDuplicates = 0;
    ASSERT_EQ(tIniFile("[s]\na=1\na=2\n[s]\na=3\n").parseInto(document), 0);
    EXPECT_EQ(describe(document), "[s]@1\na=1@2\na=2@3\n[s]@4\na=3@5\n");
    EXPECT_EQ(document.currentSection, &document.sections[1]) << "the section parsed last";
    EXPECT_EQ(findSection(document, "S"), &document.sections[1]) << "is tried first";
    EXPECT_EQ(findKey(document.sections[0], false, "a"), &document.sections[0].keys[0]);
}

// --- continuation keys ---

TEST(IniContinuation, NumberedKeysAreJoinedInTheirOrder) {
    EXPECT_EQ(parsed("[s]\nText Line1=ab\nText Line2=cd\nText Line3=ef\n"), "[s]@1\nText=abcdef@2\n");
    EXPECT_EQ(parsed("[s]\nText Line1=a\nText Line3=b\nText Line2=c\n"), "[s]@1\nText=abc@2\n");
    EXPECT_EQ(parsed("[s]\nText Line1=a\nText Line0=b\nText Line7=c\n"), "[s]@1\nText=abc@2\n");
}

TEST(IniContinuation, EverySectionIsJoinedByItself) {
    EXPECT_EQ(parsed("[s]\na Line1=1\n[t]\na Line2=2\nb Line1=3\n[s]\na Line2=4"),
              "[s]@6\na=14@2\n[t]@3\na Line2=2@4\nb=3@5\n");
}

TEST(IniContinuation, TheFirstKeysLineAndQuoteAreKept) {
    EXPECT_EQ(parsed("[s]\nT Line1=\"a \"\nT Line2='b'\n"), "[s]@1\nT=a 'b'\"@2\n");
    EXPECT_EQ(parsed("[s]\nT Line1=a\nT Line2=\" b\"\n"), "[s]@1\nT=a b@2\n");
}

TEST(IniContinuation, ARunOfOneKeyIsCutToItsStem) {
    EXPECT_EQ(parsed("[s]\na Line1=b\nc=d\n"), "[s]@1\na=b@2\nc=d@3\n");
}

TEST(IniContinuation, ANumberOneStartsANewRun) {
    EXPECT_EQ(parsed("[s]\na Line1=1\na Line2=2\nb Line1=3\nb Line2=4\n"), "[s]@1\na=12@2\nb=34@4\n");
}

TEST(IniContinuation, TheStemsWithinARunDoNotMatter) {
    EXPECT_EQ(parsed("[s]\na Line1=1\nb Line2=2\n"), "[s]@1\na=12@2\n");
}

TEST(IniContinuation, AnotherKeyEndsTheRun) {
    EXPECT_EQ(parsed("[s]\na Line1=1\nb=2\na Line2=3\n"), "[s]@1\na=1@2\nb=2@3\na Line2=3@4\n");
}

TEST(IniContinuation, NumbersWithoutANumberOneBeforeThemStay) {
    EXPECT_EQ(parsed("[s]\na Line2=1\na Line0=2\na Line1=3\n"), "[s]@1\na Line2=1@2\na Line0=2@3\na=3@4\n");
}

TEST(IniContinuation, LeadingZerosDoNotChangeANumber) {
    EXPECT_EQ(parsed("[s]\na Line01=1\na Line002=2\nb Line0001=3\nb Line00=4\n"), "[s]@1\na=12@2\nb=34@4\n");
}

TEST(IniContinuation, NumbersOfAnyLengthAreNumbers) {
    EXPECT_EQ(parsed("[s]\na Line1=1\na Line4294967297=2\na Line18446744073709551617=3\na Line11=4\na Line10=5\n"),
              "[s]@1\na=12345@2\n");
}

TEST(IniContinuation, ANameMustEndInLineAndDigits) {
    EXPECT_EQ(
        parsed("[s]\na Line=1\na Line1x=2\naLine1=3\na Line 1=4\na\tLine1=5\nLine1=6\n1=7\na Line-1=8\n"),
        "[s]@1\na Line=1@2\na Line1x=2@3\naLine1=3@4\na Line 1=4@5\na\tLine1=5@6\nLine1=6@7\n1=7@8\na Line-1=8@9\n");
}

TEST(IniContinuation, CaseCountsInLine) {
    EXPECT_EQ(parsed("[s]\na line1=1\na LINE1=2\nb LINE2=3\n"), "[s]@1\na line1=2@3\nb LINE2=3@4\n");
}

TEST(IniContinuation, TheLastLineInANameCounts) {
    EXPECT_EQ(parsed("[s]\na Line1 Line1=1\na Line7 Line2=2\n"), "[s]@1\na Line1=12@2\n");
}

TEST(IniContinuation, ANameIsCutRightBeforeTheMark) { EXPECT_EQ(parsed("[s]\na  Line1=1\n"), "[s]@1\na =1@2\n"); }

TEST(IniContinuation, AJoinedKeyStaysBesideAPlainOneOfItsName) {
    nIni::tDocument document;
    document.flags = 3;
    ASSERT_EQ(tIniFile("[s]\nText=plain\nText Line1=a\nText Line2=b\n").parseInto(document), 0);
    EXPECT_EQ(describe(document), "[s]@1\nText=plain@2\nText=ab@3\n");
    EXPECT_EQ(findKey(document.sections[0], false, "text")->value, "plain");
}

TEST(IniContinuation, RepeatedContinuationKeysAreMergedFirst) {
    EXPECT_EQ(parsed("[s]\nT Line1=a\nT Line2=b\nT LINE2=c\nT Line2=d\nT Line1=e\n"), "[s]@1\nT=ed@6\n");
}

TEST(IniContinuation, WithoutMergingRepeatedRunsGiveRepeatedKeys) {
    nIni::tDocument document;
    document.mergeDuplicates = 0;
    ASSERT_EQ(tIniFile("[s]\nT Line1=a\nT Line2=b\nT Line2=c\nT Line1=d\n").parseInto(document), 0);
    EXPECT_EQ(describe(document), "[s]@1\nT=abc@2\nT=d@5\n");
}

TEST(IniContinuation, EmptyValuesJoinToAnEmptyValue) {
    EXPECT_EQ(parsed("[s]\na Line1=\na Line2=\n", acceptEmptyValues), "[s]@1\na=@2\n");
}

// --- the file ---

TEST(IniFile, AUtf8MarkIsNoPartOfTheText) {
    EXPECT_EQ(parsed("\xEF\xBB\xBF[s]\nk=v"), "[s]@1\nk=v@2\n");
    EXPECT_EQ(parsed("\xEF\xBB\xBF"), "");
    EXPECT_EQ(parsed("[s]\n\xEF\xBB\xBFk=v"), "[s]@1\n\xEF\xBB\xBFk=v@2\n");
}

TEST(IniFile, WideTextIsRefused) {
    EXPECT_EQ(parsed("\xFF\xFE[\0s\0]\0"sv), "-3");
    EXPECT_EQ(parsed("\xFE\xFF\0[\0s\0]"sv), "-3");
    EXPECT_EQ(parsed("\xFF\xFE\0\0[\0\0\0"sv), "-3");
    EXPECT_EQ(parsed("\0\0\xFE\xFF\0\0\0["sv), "-3");
    EXPECT_EQ(parsed("\xFF\xFE"), "-3");
    EXPECT_EQ(parsed("\xFE\xFF"), "-3");
    EXPECT_EQ(parsed("\xFF\xFE\0"sv), "-3");
}

TEST(IniFile, TextWithCarriageReturnsIsNumberedByLines) {
    EXPECT_EQ(parsed("[s]\r\na=1\r\n\r\nb=2\r\n"), "[s]@1\na=1@2\nb=2@4\nerror@3\n");
}

TEST(IniFile, ALineFeedBeforeTheFirstLineIsSkippedAndNotCounted) { EXPECT_EQ(parsed("\n[s]\nk=v"), "[s]@1\nk=v@2\n"); }

TEST(IniFile, TwoLineFeedsAtTheEndMakeAMalformedLine) {
    EXPECT_EQ(parsed("[s]\nk=v\n\n"), "[s]@1\nk=v@2\nerror@3\n");
    EXPECT_EQ(parsed("[s]\r\nk=v\r\n\r\n"), "[s]@1\nk=v@2\nerror@3\n");
}

TEST(IniFile, BytesAreTakenAsTheyAre) {
    EXPECT_EQ(parsed("[\xC3\xA4]\n\x01\xFF=\xC0\x80\n"), "[\xC3\xA4]@1\n\x01\xFF=\xC0\x80@2\n");
}

TEST(IniFile, AMissingFileGivesMinus22) {
    nIni::tDocument document;
    EXPECT_EQ(parseFile(document, L"no such file.ini"), -22);
    EXPECT_EQ(parseFile(document, L""), -22);
}

TEST(IniFile, PathAndTimeAreKeptOnSuccess) {
    const tIniFile file("[s]\nbad");
    using std::chrono::sys_days, std::chrono::year, std::chrono::hours, std::chrono::seconds;
    const auto time = sys_days(year(2020) / 1 / 2) + hours(3) + seconds(4);
    last_write_time(file.path(), std::chrono::file_clock::from_sys(time));
    nIni::tDocument document;
    ASSERT_EQ(file.parseInto(document), 0);
    EXPECT_EQ(document.filePath.data(), file.widePath());
    const std::uint64_t secondsSince1601 = 18263ULL * 86400 + 3 * 3600 + 4 + 11644473600;
    EXPECT_EQ(document.fileTime, secondsSince1601 * 10'000'000);
}

TEST(IniFile, AFailureLeavesPathAndTimeOfTheLastSuccess) {
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

TEST(IniFile, APathThatDoesNotFitLeavesItsFieldEmpty) {
    const std::size_t directorySize = tIniFile("", "").path().wstring().size();
    for (const std::size_t size : {255, 256}) {
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

TEST(IniFile, APathMayHoldAnyCharacters) {
    const tIniFile file("[s]", std::filesystem::path(u"\x63D2\x4EF6 \xE4") / u"\x914D\x7F6E.ini");
    nIni::tDocument document;
    ASSERT_EQ(file.parseInto(document), 0);
    EXPECT_EQ(describe(document), "[s]@1\n");
    EXPECT_EQ(document.filePath.data(), file.widePath());
}

TEST(IniFile, ADocumentMayBeUsedForOneFileAfterTheOther) {
    nIni::tDocument document;
    ASSERT_EQ(tIniFile("[a]\nk=1\nbad\n[b]\n").parseInto(document), 0);
    ASSERT_NE(findSection(document, "b"), nullptr);
    ASSERT_EQ(tIniFile("k=2\n[c]\nk=3\n").parseInto(document), 0);
    EXPECT_EQ(describe(document), "[c]@2\nk=3@3\n") << "no error line, no section, no current section is left";
    EXPECT_EQ(findSection(document, "b"), nullptr);
}

TEST(IniFile, AFileThatIsRefusedLeavesTheDocument) {
    nIni::tDocument document;
    ASSERT_EQ(tIniFile("[a]\nbad\n").parseInto(document), 0);
    EXPECT_EQ(tIniFile("\xFF\xFE").parseInto(document), -3);
    EXPECT_EQ(describe(document), "[a]@1\nerror@2\n");
}

TEST(IniFile, TheOptionsAreNotTouched) {
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

// --- sizes ---

TEST(IniSize, OneLineMayFillTheFile) {
    const std::string value(5'000'000, 'x');
    nIni::tDocument document;
    ASSERT_EQ(tIniFile("[s]\nk=" + value).parseInto(document), 0);
    EXPECT_EQ(document.sections[0].keys[0].value, value);
    EXPECT_EQ(parsed("[s]\n" + value), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[" + value + "]"), '[' + value + "]@1\n");
    EXPECT_EQ(parsed("[s]\n" + value + "=v"), "[s]@1\n" + value + "=v@2\n");
    EXPECT_EQ(parsed("[s]\nk=" + std::string(5'000'000, ' ') + "v"), "[s]@1\nk=v@2\n");
}

TEST(IniSize, AsManyKeysAsTheFileHolds) {
    constexpr std::int32_t count = 100'000;
    std::ostringstream text;
    text << "[s]\n";
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < count; ++i) text << "key" << i << '=' << i + round << '\n';
    }
    nIni::tDocument document;
    ASSERT_EQ(tIniFile(text.str()).parseInto(document), 0);
    nIni::tSection& section = document.sections.at(0);
    ASSERT_EQ(section.keys.size(), count);
    for (std::int32_t i = 0; i < count; ++i) {
        nIni::tKey* const key = findKey(section, false, "KEY" + std::to_string(i));
        ASSERT_EQ(key, &section.keys[static_cast<std::size_t>(i)]);
        ASSERT_EQ(key->value, std::to_string(i + 1));
        ASSERT_EQ(key->line, count + i + 2);
    }
}

TEST(IniSize, AsManySectionsAsTheFileHolds) {
    constexpr std::size_t count = 20'000;
    std::ostringstream text;
    for (const char* const key : {"a", "b"}) {
        for (std::size_t i = 0; i < count; ++i) text << "[section" << i << "]\n" << key << "=" << i << '\n';
    }
    nIni::tDocument document;
    ASSERT_EQ(tIniFile(text.str()).parseInto(document), 0);
    ASSERT_EQ(document.sections.size(), count);
    for (std::size_t i = 0; i < count; ++i) {
        nIni::tSection* const section = findSection(document, "SECTION" + std::to_string(i));
        ASSERT_EQ(section, &document.sections[i]);
        ASSERT_EQ(section->keys.size(), 2U);
        ASSERT_EQ(section->keys[1].value, std::to_string(i));
    }
}

TEST(IniSize, AsManyContinuationKeysAsTheFileHolds) {
    constexpr std::size_t count = 20'000;
    std::ostringstream text;
    std::string expected;
    text << "[s]\n";
    for (std::size_t i = 1; i <= count; ++i) {
        text << "Text Line" << i << '=' << i << '\n';
        expected += std::to_string(i);
    }
    text << "[t]\n";
    for (std::size_t i = 1; i <= count; ++i) text << i << " Line1=" << i << '\n';
    nIni::tDocument document;
    ASSERT_EQ(tIniFile(text.str()).parseInto(document), 0);
    ASSERT_EQ(document.sections.at(0).keys.size(), 1U);
    EXPECT_EQ(document.sections[0].keys[0].value, expected);
    ASSERT_EQ(document.sections.at(1).keys.size(), count);
    EXPECT_EQ(findKey(document.sections[1], false, "1234"), &document.sections[1].keys[1233]);
    EXPECT_EQ(findKey(document.sections[1], false, "1234 Line1"), nullptr) << "no look-up finds a name of before";
}

}  // namespace
