#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

/// What becomes of a description file, beside that of a plug-in Z in whose way it must not be.
class DescriptionFile : public EndToEnd {
protected:
    DescriptionFile() { addPlugin("Z"); }

    /// A whole description of a plug-in with these keys besides, each line ended as given.
    [[nodiscard]] std::string description(const std::string& end, const std::string& keys = {}) const {
        return "[Service]" + end + "Name=Case" + end + "Path=" + utf8Path(libraries() / L"Z.dll") + end +
               "Initialize=InitOk" + end + keys;
    }

    /// The plug-ins started when this is a file in the plug-in directory.
    std::string pluginsWith(std::string_view bytes) {
        describe(L"case.ini", bytes);
        startPlugins();
        status_ = stop();
        return status_.names();
    }

    /// Rejected with a message that names the file.
    void expectRejected(std::string_view bytes) {
        EXPECT_EQ(pluginsWith(bytes), "Z");
        EXPECT_EQ(status_.messages, rejection(L"case.ini"));
    }
    void expectAccepted(std::string_view bytes) {
        EXPECT_EQ(pluginsWith(bytes), "Case Z");
        EXPECT_EQ(status_.messages, "");
        EXPECT_EQ(status_.plugin("Case").code("InitOk"), 0);
        EXPECT_EQ(status_.plugin("Case").loadedFrom, utf8Path(libraries() / L"Z.dll"));
    }

    [[nodiscard]] std::string rejection(const wchar_t* file) const {
        return "Failed to parse service description file: " + utf8Path(descriptions() / file) + "\n";
    }
    [[nodiscard]] const tStatusFile& status() const { return status_; }

private:
    tStatusFile status_;
};

std::string utf16(std::string_view text) {
    std::string result("\xFF\xFE", 2);
    for (const char each : text) result += {each, '\0'};
    return result;
}

// Lines.

TEST_F(DescriptionFile, LinesMayEndInAnyUsualWay) {
    for (const std::string& end :
         {std::string("\n"), std::string("\r\n"), std::string("\r"), std::string("\n\r"), std::string(1, '\0')}) {
        SCOPED_TRACE(testing::PrintToString(end));
        expectAccepted(description(end));
    }
}

TEST_F(DescriptionFile, TheLastLineNeedsNoEnd) {
    std::string text = description("\r\n");
    text.resize(text.size() - 2);
    expectAccepted(text);
}

TEST_F(DescriptionFile, ABlankLineIsMalformed) {
    for (const char* blank : {"\n", "  \t\n"}) {
        SCOPED_TRACE(testing::PrintToString(blank));
        expectRejected(description("\n", "Stop=\n" + std::string(blank) + "Cleanup=\n"));
    }
}

TEST_F(DescriptionFile, ABlankLineAtTheEndIsMalformed) { expectRejected(description("\r\n", "\r\n")); }

TEST_F(DescriptionFile, OneLineFeedBeforeTheFirstLineIsSkipped) {
    expectAccepted("\n" + description("\n"));
    expectRejected("\n\n" + description("\n"));
}

TEST_F(DescriptionFile, ALineThatIsNeitherKeyNorHeaderNorCommentIsMalformed) {
    for (const char* line : {"nonsense", "=value", "[Service", "[]", "# remark"}) {
        SCOPED_TRACE(line);
        expectRejected(description("\n", line));
    }
}

TEST_F(DescriptionFile, LinesOfAnyLengthAreRead) {
    expectAccepted(description("\n", "Remark=" + std::string(100000, 'x') + "\n;" + std::string(5000, 'y')));
}

TEST_F(DescriptionFile, ACarriageReturnAndItsLineFeedMayLieOnBothSidesOfAChunk) {
    // Files are read in chunks of 2084 bytes.
    const std::string head = "[Service]\r\nRemark=";
    for (std::size_t crAt = 2082; crAt <= 2084; ++crAt) {
        SCOPED_TRACE(crAt);
        expectAccepted(head + std::string(crAt - head.size(), 'x') + "\r\n" + description("\r\n"));
    }
}

// Encodings.

TEST_F(DescriptionFile, AUtf8ByteOrderMarkIsSkipped) { expectAccepted("\xEF\xBB\xBF" + description("\r\n")); }

TEST_F(DescriptionFile, Utf16AndUtf32AreRejected) {
    expectRejected(utf16(description("\r\n")));
    expectRejected(std::string("\xFE\xFF\0[", 4));
    expectRejected(std::string("\xFF\xFE\0\0[\0\0\0", 8));
    expectRejected(std::string("\0\0\xFE\xFF\0\0\0[", 8));
}

// Keys and sections.

TEST_F(DescriptionFile, NamesOfSectionsAndKeysIgnoreCaseAndBlanks) {
    expectAccepted("  [ SERVICE ] remark\nNAME = Case \npath\t=\t" + utf8Path(libraries() / L"Z.dll") +
                   "\n initialize=InitOk");
}

TEST_F(DescriptionFile, ValuesLoseDoubleQuotesOnly) {
    expectAccepted(description("\n", "Name=\"Case\""));
    EXPECT_EQ(pluginsWith(description("\n", "Name='Case'")), "'Case' Z");
}

TEST_F(DescriptionFile, TheLastOfTwoKeysWins) {
    expectAccepted("[Service]\nName=First\nPath=none.dll\n" + description("\n"));
}

TEST_F(DescriptionFile, ARepeatedSectionGoesOn) {
    expectAccepted("[Service]\nName=First\n[Other]\nName=Other\nPath=other.dll\n" + description("\n"));
}

TEST_F(DescriptionFile, WhatStandsOutsideTheServiceSectionDoesNotMatter) {
    expectAccepted("Name=Before\nRequires=0\n" + description("\n", "[Other]\nRequires=0\nInitialize=NoSuchEntry"));
}

TEST_F(DescriptionFile, CommentsAreSkippedAndASemicolonInAValueIsNone) {
    expectAccepted("; [Nonsense\n" + description("\n", "  ;Requires=0\n"));
    EXPECT_EQ(pluginsWith(description("\n", "Name=Case;1")), "Case;1 Z");
}

TEST_F(DescriptionFile, ContinuedKeysAreJoined) {
    expectAccepted("[Service]\nName Line1=Ca\nName Line2=se\nPath=" + utf8Path(libraries() / L"Z.dll") +
                   "\nInitialize Line1=Init\nInitialize Line2=Ok");
}

TEST_F(DescriptionFile, WithoutAServiceSectionThereIsAPluginWithoutAnything) {
    for (const char* bytes : {"", "[Other]\nName=Case", "Name=Case"}) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(pluginsWith(bytes), " Z");
        const tPluginStatus& plugin = status().plugin("");
        EXPECT_EQ(plugin.dependencies + plugin.loadedFrom, "");
        EXPECT_EQ(plugin.requiresMask, "1");
        EXPECT_EQ(plugin.code("Init"), -52005);
        EXPECT_EQ(status().messages, "");
    }
}

// Odd files.

TEST_F(DescriptionFile, BinaryDataIsRejected) {
    std::string bytes;
    for (unsigned i = 0; i < 100000; ++i) bytes += static_cast<char>((i * 2654435761U) >> 24U);
    expectRejected(bytes);
}

TEST_F(DescriptionFile, AMillionKeysAreReadLikeAFew) {
    std::string bytes = description("\n");
    bytes.reserve(20000000);
    for (int i = 0; i < 1000000; ++i) bytes += "Key" + std::to_string(i) + "=value\n";
    expectAccepted(bytes);
}

TEST_F(DescriptionFile, FiftyMegabytesInOneLineAreReadLikeAnyOther) {
    expectAccepted(description("\n", "Remark=" + std::string(50000000, 'x')));
}

TEST_F(DescriptionFile, FiftyMegabytesOfNonsenseAreRejected) { expectRejected(std::string(50000000, 'x')); }

TEST_F(DescriptionFile, OneThatCannotBeOpenedIsRejected) {
    const tPath file = describe(L"case.ini", description("\n"));
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    const tHandle locked(handle);
    startPlugins();
    EXPECT_EQ(stop().names(), "Z");
    EXPECT_EQ(tStatusFile::read().messages, rejection(L"case.ini"));
}

TEST_F(DescriptionFile, OnlyFilesWithTheExtensionInLowerCaseAreLookedAt) {
    describe(L"a.INI", "nonsense");
    describe(L"b.Ini", "nonsense");
    describe(L"c.txt", "nonsense");
    describe(L"d.ini.bak", "nonsense");
    describe(L"ini", "nonsense");
    std::filesystem::create_directory(descriptions() / L"e.ini");
    EXPECT_EQ(pluginsWith(description("\n")), "Case Z");
    EXPECT_EQ(status().messages, "");
}

TEST_F(DescriptionFile, EachBadOneIsNamedAndTheGoodOnesAreAllRead) {
    addPlugin("A");
    for (const wchar_t* file : {L"1.ini", L"2.ini", L"3.ini"}) describe(file, "nonsense");
    EXPECT_EQ(pluginsWith(description("\n")), "A Case Z");
    for (const wchar_t* file : {L"1.ini", L"2.ini", L"3.ini"}) {
        EXPECT_THAT(status().messages, testing::HasSubstr(rejection(file)));
    }
    EXPECT_EQ(std::ranges::count(status().messages, '\n'), 3);
}

TEST_F(DescriptionFile, APathOfMoreThan256CharactersIsReadAllTheSame) {
    // Windows wants this prefix for such paths, unless the machine was told to do without.
    const tPath directory = LR"(\\?\)" + (root() / std::wstring(120, L'd')).native();
    share(directory / std::wstring(120, L'e'));
    ASSERT_GT(descriptions().native().size(), 256u);
    addPlugin("A");
    EXPECT_EQ(pluginsWith(description("\n")), "A Case");
    EXPECT_EQ(status().messages, "");
}

}  // namespace
}  // namespace endtoend
