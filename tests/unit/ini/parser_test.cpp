#include "ini/parser.h"

#include <gtest/gtest.h>

#include <cctype>
#include <sstream>
#include <string>

#include "tests/support/iniFile.h"

namespace {

using nIni::acceptEmptyValues;
using nIni::colonSeparates;
using nIni::stripDoubleQuotes;
using nIni::stripSingleQuotes;

TEST(iniParser, SectionsAndKeysKeepTheOrderOfTheFile) {
    EXPECT_EQ(parsed("[b]\nz=1\ny=2\n[a]\nx=3\n"), "[b]@1\nz=1@2\ny=2@3\n[a]@4\nx=3@5\n");
}

TEST(iniParser, AnEmptyFileGivesAnEmptyDocument) { EXPECT_EQ(parsed(""), ""); }

// --- lines of every kind ---

TEST(iniParser, WhiteSpaceAroundKeyAndValueIsDropped) {
    EXPECT_EQ(parsed("[s]\n \t\v\f key \t=\v\f inner space \t\n"), "[s]@1\nkey=inner space@2\n");
}

TEST(iniParser, OnlyWhatIsspaceCallsSpaceIsDropped) {
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

TEST(iniParser, ACommentMayStandBehindWhiteSpace) { EXPECT_EQ(parsed("; a=b\n[s]\n \t; c=d\n"), "[s]@2\n"); }

TEST(iniParser, ASemicolonBehindAValueBelongsToIt) { EXPECT_EQ(parsed("[s]\nk=v ; w"), "[s]@1\nk=v ; w@2\n"); }

TEST(iniParser, NoOtherCharacterStartsAComment) {
    EXPECT_EQ(parsed("[s]\n#k=v\n"), "[s]@1\n#k=v@2\n");
    EXPECT_EQ(parsed("[s]\n# k\n"), "[s]@1\nerror@2\n");
}

TEST(iniParser, SpaceInsideTheBracketsIsDroppedAndTextBehindThemIgnored) {
    EXPECT_EQ(parsed(" [ \t a b \t ] c=d ; e ]\nk=v"), "[a b]@1\nk=v@2\n");
}

TEST(iniParser, ASectionNameRunsToTheFirstBracket) {
    EXPECT_EQ(parsed("[a]]\n[[b]\n[c;d=e]\n"), "[a]@1\n[[b]@2\n[c;d=e]@3\n");
}

TEST(iniParser, AHeaderWithoutBracketOrNameIsMalformed) {
    EXPECT_EQ(parsed("[a"), "error@1\n");
    EXPECT_EQ(parsed("[]"), "error@1\n");
    EXPECT_EQ(parsed("[ \t ]"), "error@1\n");
    EXPECT_EQ(parsed("["), "error@1\n");
    EXPECT_EQ(parsed("[a=b"), "error@1\n") << "and it is no key either";
}

TEST(iniParser, KeysBehindAMalformedHeaderStayInTheSectionBefore) {
    EXPECT_EQ(parsed("[a]\n[b\nk=v"), "[a]@1\nk=v@3\nerror@2\n");
}

TEST(iniParser, TheFirstSeparatorCounts) { EXPECT_EQ(parsed("[s]\na=b=c\nd = = e\n"), "[s]@1\na=b=c@2\nd== e@3\n"); }

TEST(iniParser, AKeyMayHoldBracketsAndSemicolonsInside) { EXPECT_EQ(parsed("[s]\na;b[c]=d"), "[s]@1\na;b[c]=d@2\n"); }

TEST(iniParser, ALineWithoutSeparatorOrKeyIsMalformed) {
    EXPECT_EQ(parsed("[s]\nkey\n"), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[s]\n=value\n"), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[s]\n \t =value\n"), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[s]\n=\n"), "[s]@1\nerror@2\n");
}

TEST(iniParser, ABlankLineBetweenKeysIsMalformed) {
    EXPECT_EQ(parsed("[s]\na=1\n\nb=2\n"), "[s]@1\na=1@2\nb=2@4\nerror@3\n");
    EXPECT_EQ(parsed("[s]\na=1\n \t\nb=2\n"), "[s]@1\na=1@2\nb=2@4\nerror@3\n");
}

TEST(iniParser, OnlyTheFirstMalformedLineIsRecorded) {
    EXPECT_EQ(parsed("[s]\nbad\n\n[worse\nk=v\n"), "[s]@1\nk=v@5\nerror@2\n");
}

TEST(iniParser, AnEmptyValueIsAcceptedOnlyByFlag) {
    EXPECT_EQ(parsed("[s]\na=\nb= \t\n", acceptEmptyValues), "[s]@1\na=@2\nb=@3\n");
    EXPECT_EQ(parsed("[s]\na=\nb=1\n", 0), "[s]@1\nb=1@3\nerror@2\n");
    EXPECT_EQ(parsed("[s]\na= \t\n", 0), "[s]@1\nerror@2\n");
}

TEST(iniParser, QuotesWithNothingBetweenThemAreNoEmptyValue) {
    EXPECT_EQ(parsed("[s]\na=\"\"\n", stripDoubleQuotes), "[s]@1\na=\"@2\n");
}

// --- quotes ---

TEST(iniParser, DoubleQuotesGoAndAreRecorded) {
    EXPECT_EQ(parsed("[s]\na= \" b \" \n", stripDoubleQuotes), "[s]@1\na= b \"@2\n");
    EXPECT_EQ(parsed("[s]\na=\"b\"\n", stripSingleQuotes), "[s]@1\na=\"b\"@2\n") << "kept without the flag";
}

TEST(iniParser, SingleQuotesGoAndAreRecordedByTheirFlag) {
    EXPECT_EQ(parsed("[s]\na=' b '\n", stripSingleQuotes), "[s]@1\na= b '@2\n");
    EXPECT_EQ(parsed("[s]\na='b'\n", 3), "[s]@1\na='b'@2\n") << "kept without the flag";
}

TEST(iniParser, TheQuoteIsItsCharacterCode) {
    nIni::tDocument document;
    document.flags = stripDoubleQuotes | stripSingleQuotes;
    ASSERT_EQ(tIniFile("[s]\na=\"x\"\nb='x'\nc=x").parseInto(document), 0);
    EXPECT_EQ(document.sections[0].keys[0].quote, 34);
    EXPECT_EQ(document.sections[0].keys[1].quote, 39);
    EXPECT_EQ(document.sections[0].keys[2].quote, 0);
}

TEST(iniParser, OneQuoteCharacterAloneStays) {
    EXPECT_EQ(parsed("[s]\na=\"\nb='\n", 7), "[s]@1\na=\"@2\nb='@3\n");
    nIni::tDocument document;
    ASSERT_EQ(tIniFile("[s]\na=\"").parseInto(document), 0);
    EXPECT_EQ(document.sections[0].keys[0].quote, 0);
}

TEST(iniParser, QuotesThatDoNotEncloseTheValueStay) {
    EXPECT_EQ(parsed("[s]\na=\"b\nc=d\"\ne=\"f'\ng=h\"i\"j\n", 7), "[s]@1\na=\"b@2\nc=d\"@3\ne=\"f'@4\ng=h\"i\"j@5\n");
}

TEST(iniParser, OnlyTheOuterPairOfQuotesGoes) {
    EXPECT_EQ(parsed("[s]\na=\"\"b\"\"\nc=\"'d'\"\ne='\"f\"'\ng=\"h\\\"\"\n", 7),
              "[s]@1\na=\"b\"\"@2\nc='d'\"@3\ne=\"f\"'@4\ng=h\\\"\"@5\n");
}

// --- the colon ---

TEST(iniParser, AColonIsPartOfTheKeyWithoutItsFlag) {
    EXPECT_EQ(parsed("[s]\na:b=c\nd:=e\nf:g\n"), "[s]@1\na:b=c@2\nd:=e@3\nerror@4\n");
}

TEST(iniParser, AColonSeparatesByFlag) {
    const std::uint32_t flags = colonSeparates | acceptEmptyValues;
    EXPECT_EQ(parsed("[s]\na:b\nc : d=e\nf=g:h\ni:=j\nk: =l\nm=:n\no:\np::=q\nr:==s\n", flags),
              "[s]@1\na=b@2\nc=d=e@3\nf=g:h@4\ni=j@5\nk==l@6\nm=:n@7\no=@8\np=:=q@9\nr==s@10\n");
    EXPECT_EQ(parsed("[s]\n:a\n", flags), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[s]\n:=a\n", flags), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[s]\na:=\n", colonSeparates), "[s]@1\nerror@2\n") << "an empty value";
}

// --- keys before the first section ---

TEST(iniParser, KeysBeforeTheFirstSectionAreIgnored) { EXPECT_EQ(parsed("a=b\n[s]\nc=d\n"), "[s]@2\nc=d@3\n"); }

TEST(iniParser, ALineBeforeTheFirstSectionMayBeMalformed) { EXPECT_EQ(parsed("a\n[s]\n"), "[s]@2\nerror@1\n"); }

TEST(iniParser, KeysBeforeTheFirstSectionMakeASectionOfTheirOwnWithTheColonFlag) {
    EXPECT_EQ(parsed(";\na=b\nc:d\na=e\n[s]\nf=g\n", colonSeparates), "[(null)]@-1\na=e@4\nc=d@3\n[s]@5\nf=g@6\n");
    EXPECT_EQ(parsed("a=b\n[(NULL)]\nc=d\n", colonSeparates), "[(null)]@2\na=b@1\nc=d@3\n");
}

// --- duplicates ---

TEST(iniParser, ARepeatedHeaderReopensItsSectionAndMovesItsLine) {
    EXPECT_EQ(parsed("[Service]\na=1\n[t]\n[SERVICE]\nb=2\n"), "[Service]@4\na=1@2\nb=2@5\n[t]@3\n");
    EXPECT_EQ(parsed("[s]\na=1\n[s]\nb=2\n"), "[s]@3\na=1@2\nb=2@4\n");
}

TEST(iniParser, TheLastOfRepeatedKeysWinsInTheFirstOnesPlace) {
    EXPECT_EQ(parsed("[s]\nPath=a\nb=c\nPATH=\"d\"\n"), "[s]@1\nPath=d\"@4\nb=c@3\n");
    EXPECT_EQ(parsed("[s]\nPath=\"a\"\nPath=b\n"), "[s]@1\nPath=b@3\n") << "the quote is the new value's";
    EXPECT_EQ(parsed("[s]\nPath=a\nPath=\n"), "[s]@1\nPath=@3\n");
}

TEST(iniParser, RepeatedKeysAreToldApartBySection) {
    EXPECT_EQ(parsed("[s]\na=1\n[t]\na=2\n[s]\na=3\n"), "[s]@5\na=3@6\n[t]@3\na=2@4\n");
}

TEST(iniParser, AMalformedRepetitionChangesNothing) {
    EXPECT_EQ(parsed("[s]\na=1\na=\n", 0), "[s]@1\na=1@2\nerror@3\n");
}

TEST(iniParser, NamesThatDifferInCaseAreTwoWhenCaseCounts) {
    nIni::tDocument document;
    document.caseSensitive = 1;
    ASSERT_EQ(tIniFile("[s]\na=1\nA=2\na=3\n[S]\n").parseInto(document), 0);
    EXPECT_EQ(describe(document), "[s]@1\na=3@4\nA=2@3\n[S]@5\n");
}

TEST(iniParser, LettersOutsideAsciiAreNotFolded) {
    EXPECT_EQ(parsed("[s]\n\xC4=1\n\xE4=2\n@=3\n`=4\n{=5\n[=6\n"),
              "[s]@1\n\xC4=1@2\n\xE4=2@3\n@=3@4\n`=4@5\n{=5@6\nerror@7\n");
}

TEST(iniParser, NothingIsMergedWhenTheDocumentSaysSo) {
    nIni::tDocument document;
    document.mergeDuplicates = 0;
    ASSERT_EQ(tIniFile("[s]\na=1\na=2\n[s]\na=3\n").parseInto(document), 0);
    EXPECT_EQ(describe(document), "[s]@1\na=1@2\na=2@3\n[s]@4\na=3@5\n");
    EXPECT_EQ(document.currentSection, &document.sections[1]) << "the section parsed last";
    EXPECT_EQ(findSection(document, "S"), &document.sections[1]) << "is tried first";
    EXPECT_EQ(findKey(document.sections[0], false, "a"), &document.sections[0].keys.front());
}

}  // namespace
