#include "source/nPluginData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stdpath/path.h"
#include "tests/support/exceptions.h"
#include "tests/support/folder.h"
#include "tests/support/stdpath.h"

namespace {

using support::caughtReport;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

std::string report(const std::string& code, const std::string& constant, const std::string& line) {
    return code + R"( {"error_constant":")" + constant + R"(","file":".\\source\\nPluginData","line":)" + line +
           R"(,"component":"zuZiptraRemoteService"})";
}

const std::string directoryMissing = report("-52003", "zukesterr_softwareFaultKESTInternalUseOnly", "138");

class nPluginDataListing : public testing::Test {
protected:
    std::vector<std::string> listed(const std::filesystem::path& name = {}) const {
        std::vector<std::string> files;
        nPluginData::listDescriptionFiles(nStdPath::pathFromUtf8(folder.utf8(name)), ".ini", files);
        return files;
    }

    support::tFolder folder;
};

TEST_F(nPluginDataListing, ListsRegularFilesWithTheLowerCaseExtension) {
    const std::string a = folder.write("a.ini");
    folder.write("b.INI");
    folder.write("c.txt");
    folder.makeFolder("d.ini");
    EXPECT_THAT(listed(), ElementsAre(a));
}

TEST_F(nPluginDataListing, TheExtensionStartsAtTheLastDotEvenIfNothingPrecedesIt) {
    folder.write("ini");
    const std::string bare = folder.write(".ini");
    folder.write("a.ini.bak");
    folder.write("b.inix");
    folder.write("c.in");
    const std::string d = folder.write("d.bak.ini");
    EXPECT_THAT(listed(), UnorderedElementsAre(bare, d));
}

TEST_F(nPluginDataListing, ListsNothingInAnEmptyDirectory) { EXPECT_THAT(listed(), IsEmpty()); }

TEST_F(nPluginDataListing, DoesNotListFilesInSubfolders) {
    folder.makeFolder("inner");
    folder.write("inner/a.ini");
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(nPluginDataListing, AppendsToTheList) {
    const std::string a = folder.write("a.ini");
    std::vector<std::string> files{"before"};
    nPluginData::listDescriptionFiles(nStdPath::pathFromUtf8(folder.utf8()), ".ini", files);
    EXPECT_THAT(files, ElementsAre("before", a));
}

TEST_F(nPluginDataListing, KeepsTheFileSystemsOrder) {
    for (const char* const name : {"m.ini", "z.ini", "a.ini", "q.ini", "b.ini", "x.ini", "c.ini", "y.ini"}) {
        folder.write(name);
    }
    std::vector<std::string> expected;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        expected.push_back(folder.utf8(entry.path().filename()));
    }
    EXPECT_EQ(listed(), expected);
}

TEST_F(nPluginDataListing, ListsFilesWithAnyNameInAnyFolder) {
    folder.makeFolder(u"größe 计划 🚀");
    std::vector<std::string> expected;
    for (const std::u16string_view name : {u"with two blanks.ini", u"größe.ini", u"计划.ini", u"🚀.ini"}) {
        expected.push_back(folder.write(std::filesystem::path(u"größe 计划 🚀") / name));
    }
    EXPECT_THAT(listed(u"größe 计划 🚀"), testing::UnorderedElementsAreArray(expected));
}

TEST_F(nPluginDataListing, AcceptsAnotherExtension) {
    folder.write("a.ini");
    const std::string b = folder.write("b.txt");
    std::vector<std::string> files;
    nPluginData::listDescriptionFiles(nStdPath::pathFromUtf8(folder.utf8()), ".txt", files);
    EXPECT_THAT(files, ElementsAre(b));
}

TEST_F(nPluginDataListing, ThrowsForAMissingDirectory) {
    EXPECT_EQ(caughtReport([this] { listed("missing"); }), directoryMissing);
    EXPECT_EQ(caughtReport([this] { listed("missing/inner"); }), directoryMissing);
}

TEST_F(nPluginDataListing, ThrowsForAFileInPlaceOfTheDirectory) {
    folder.write("plugins", "no directory");
    EXPECT_EQ(caughtReport([this] { listed("plugins"); }), directoryMissing);
    EXPECT_EQ(caughtReport([this] { listed("plugins/inner"); }), directoryMissing);
}

class nPluginDataPlugins : public nPluginDataListing {
protected:
    static std::vector<std::string> all() {
        std::vector<std::string> files;
        nPluginData::listPlugins(files);
        return files;
    }

    support::tSharedPlaces places;
};

TEST_F(nPluginDataPlugins, AreListedFromTheSharedDirectory) {
    folder.makeFolder(u"共享 share/ZiptraRemoteService/plugins");
    folder.write(u"共享 share/ZiptraRemoteService/top.ini");
    const std::string a = folder.write(u"共享 share/ZiptraRemoteService/plugins/a.ini");
    folder.write(u"共享 share/ZiptraRemoteService/plugins/a.INI.txt");
    places.sharedDirectory = folder.utf8(u"共享 share") + "\\";
    EXPECT_THAT(all(), ElementsAre(a));
}

TEST_F(nPluginDataPlugins, ThrowsWithoutASharedDirectory) {
    const std::string thrown = caughtReport(all);
    EXPECT_TRUE(thrown.starts_with(R"(-52006 {"error_constant":"kestStatusResourceNotFound",)")) << thrown;
}

/// Returns the fields in order, separated by bars.
std::string shown(const tPluginDescription& record) {
    std::string text = record.name + '|';
    for (const std::string& dependency : record.dependencies) text += dependency + ',';
    text += '|' + std::to_string(record.requiresMask) + '|' + record.path;
    return text + '|' + record.initialize + '|' + record.stop + '|' + record.cleanup;
}

class nPluginDataReading : public testing::Test {
protected:
    /// Returns a description read from this content into a record that had other content.
    tPluginDescription of(std::string_view content) {
        tPluginDescription record = earlier;
        nPluginData::readDescription(folder.write("a.ini", content), record);
        return record;
    }

    /// Returns the failure to read this file; expects the record to be unchanged.
    std::string failure(const std::string& path) {
        tPluginDescription record = earlier;
        std::string thrown = caughtReport([&] { nPluginData::readDescription(path, record); });
        EXPECT_EQ(shown(record), shown(earlier));
        return thrown;
    }

    std::uint32_t requiresOf(const std::string& value) { return of("[Service]\nRequires=" + value).requiresMask; }

    const tPluginDescription earlier{"earlier", {"x", "y"}, 6, "earlier.dll", "i", "s", "c"};
    support::tFolder folder;
};

TEST_F(nPluginDataReading, ReadsEveryKeyOfTheFile) {
    EXPECT_EQ(shown(of("[Service]\r\n"
                       "Name=Scheduler\r\n"
                       "Dependencies=Transport, Settings\r\n"
                       "Path=scheduler.dll\r\n"
                       "Requires=3\r\n"
                       "Initialize=SchedulerInitialize\r\n"
                       "Stop=SchedulerStop\r\n"
                       "Cleanup=SchedulerCleanup\r\n")),
              "Scheduler|Settings,Transport,|3|scheduler.dll|SchedulerInitialize|SchedulerStop|SchedulerCleanup");
}

TEST_F(nPluginDataReading, UsesDefaultsIfTheSectionIsEmpty) { EXPECT_EQ(shown(of("[Service]")), "||1||||"); }

TEST_F(nPluginDataReading, UsesDefaultsIfTheSectionIsMissing) {
    EXPECT_EQ(shown(of("")), "||1||||");
    EXPECT_EQ(shown(of("[Other]\nName=Scheduler\nRequires=7")), "||1||||");
}

TEST_F(nPluginDataReading, IgnoresOtherSectionsAndKeys) {
    EXPECT_EQ(shown(of("Name=before\n[Other]\nPath=other.dll\n[Service]\nName=A\nComment=x\n[Last]\nStop=y")),
              "A||1||||");
}

TEST_F(nPluginDataReading, FindsSectionAndKeysInAnyCase) {
    EXPECT_EQ(shown(of("[SERVICE]\nnAmE=Mixed")), "Mixed||1||||");
}

TEST_F(nPluginDataReading, StripsDoubleQuotesAroundAValueAndKeepsSingleOnes) {
    EXPECT_EQ(shown(of("[Service]\nPath=\"C:\\My plug-ins\\a.dll\"\nName='A'")), "'A'||1|C:\\My plug-ins\\a.dll|||");
}

TEST_F(nPluginDataReading, AcceptsEmptyValues) {
    EXPECT_EQ(shown(of("[Service]\nName=\nDependencies=\nPath=\nRequires=\nInitialize=\nStop=\nCleanup=")), "||1||||");
}

TEST_F(nPluginDataReading, OnlyTheEqualsSignIsASeparator) {
    EXPECT_EQ(shown(of("[Service]\nName:x=A\nPath=C:\\a.dll")), "||1|C:\\a.dll|||");
}

TEST_F(nPluginDataReading, SortsDependenciesByteByByteAndKeepsDuplicates) {
    EXPECT_THAT(of("[Service]\nDependencies=b,a,b").dependencies, ElementsAre("a", "b", "b"));
    EXPECT_THAT(of("[Service]\nDependencies=\xC3\xA4,a,Z,_,B").dependencies,
                ElementsAre("B", "Z", "_", "a", "\xC3\xA4"));
}

TEST_F(nPluginDataReading, RequiresIsOneIfMissingOrEmpty) {
    EXPECT_EQ(of("[Service]\nName=A").requiresMask, 1U);
    EXPECT_EQ(requiresOf(""), 1U);
    EXPECT_EQ(requiresOf("\"\""), 1U);
}

TEST_F(nPluginDataReading, RequiresIsZeroIfNotANumber) {
    EXPECT_EQ(requiresOf("x"), 0U);
    EXPECT_EQ(requiresOf("x7"), 0U);
    EXPECT_EQ(requiresOf("-"), 0U);
    EXPECT_EQ(requiresOf("- 1"), 0U);
    EXPECT_EQ(requiresOf("\" \""), 0U);
}

TEST_F(nPluginDataReading, RequiresIsTheNumberThatTheValueBeginsWith) {
    EXPECT_EQ(requiresOf("7"), 7U);
    EXPECT_EQ(requiresOf("0"), 0U);
    EXPECT_EQ(requiresOf("2x"), 2U);
    EXPECT_EQ(requiresOf("2 4"), 2U);
    EXPECT_EQ(requiresOf("\" \t 5\""), 5U);
    EXPECT_EQ(requiresOf("4294967295"), 4294967295U);
}

TEST_F(nPluginDataReading, RequiresIsDecimal) {
    EXPECT_EQ(requiresOf("010"), 10U);
    EXPECT_EQ(requiresOf("0x10"), 0U);
}

TEST_F(nPluginDataReading, RequiresMayHaveASign) {
    EXPECT_EQ(requiresOf("+3"), 3U);
    EXPECT_EQ(requiresOf("-1"), 4294967295U);
    EXPECT_EQ(requiresOf("-4294967295"), 1U);
}

TEST_F(nPluginDataReading, KeepsTextsInAnyScriptByteForByte) {
    EXPECT_EQ(shown(of("\xEF\xBB\xBF[Service]\nName=\xE8\xAE\xA1\nPath=\xF0\x9F\x9A\x80.dll\nStop=\xFF\x80")),
              "\xE8\xAE\xA1||1|\xF0\x9F\x9A\x80.dll||\xFF\x80|");
}

TEST_F(nPluginDataReading, ReadsAFileWithAnyName) {
    folder.makeFolder(u"größe 计划");
    tPluginDescription record;
    nPluginData::readDescription(folder.write(u"größe 计划/with blanks 🚀.ini", "[Service]\nName=A"), record);
    EXPECT_EQ(record.name, "A");
}

TEST_F(nPluginDataReading, ListsAndReadsFilesInAFolderWithAVeryLongPath) {
    std::filesystem::path name;
    while (folder.utf8(name).size() < 1000) name /= std::string(100, 'x');
    folder.makeFolder(name);
    folder.write(name / "a.ini", "[Service]\nName=A");
    std::vector<std::string> files;
    nPluginData::listDescriptionFiles(nStdPath::pathFromUtf8(folder.utf8(name)), ".ini", files);
    ASSERT_EQ(files.size(), 1U);
    tPluginDescription record;
    nPluginData::readDescription(files.front(), record);
    EXPECT_EQ(record.name, "A");
}

TEST_F(nPluginDataReading, ThrowsTheParsersCodeForAMissingFile) {
    EXPECT_EQ(failure(folder.utf8("missing.ini")), report("-22", "result", "261"));
}

TEST_F(nPluginDataReading, ThrowsTheParsersCodeForAUtf16File) {
    EXPECT_EQ(failure(folder.write("a.ini", "\xFF\xFE[\0S\0")), report("-3", "result", "261"));
}

TEST_F(nPluginDataReading, ThrowsForAMalformedLine) {
    const std::string malformed = report("-52005", "zukesterr_invalidParameter", "268");
    for (const char* const content : {"[Service]\nName=A\n\nPath=a.dll", "[Service]\nName=A\n\n", "[Service\nName=A",
                                      "[Service]\nName", "[Service]\n=A", "   ", "[Service]\nName:A"}) {
        EXPECT_EQ(failure(folder.write("a.ini", content)), malformed) << content;
    }
}

std::vector<std::string> split(std::string_view text) {
    std::vector<std::string> list{"dropped"};
    nPluginData::splitDependencies(text, list);
    return list;
}

TEST(nPluginDataDependencies, AreTheTrimmedTextsBetweenTheCommas) {
    EXPECT_THAT(split("Transport, Settings"), ElementsAre("Transport", "Settings"));
    EXPECT_THAT(split(" b , ,a,,"), ElementsAre("b", "a"));
}

TEST(nPluginDataDependencies, KeepTheirOrderTheirCaseAndTheirDuplicates) {
    EXPECT_THAT(split("b,a,B,b"), ElementsAre("b", "a", "B", "b"));
}

TEST(nPluginDataDependencies, AreEmptyForATextWithoutNames) {
    EXPECT_THAT(split(""), IsEmpty());
    EXPECT_THAT(split(" \t "), IsEmpty());
    EXPECT_THAT(split(" ,,, , "), IsEmpty());
}

TEST(nPluginDataDependencies, AreSeparatedOnlyByCommas) {
    EXPECT_THAT(split("a b;c|d, e\tf"), ElementsAre("a b;c|d", "e\tf"));
}

TEST(nPluginDataDependencies, AreTrimmedOfEveryKindOfWhiteSpace) {
    EXPECT_THAT(split(" \t\n\v\f\ra b \t\n\v\f\r,\tc"), ElementsAre("a b", "c"));
}

TEST(nPluginDataDependencies, KeepBytesAbove127) {
    for (int byte = 128; byte < 256; ++byte) {
        const std::string name(1, static_cast<char>(byte));
        EXPECT_THAT(split(" " + name + " ,a"), ElementsAre(name, "a")) << byte;
    }
}

TEST(nPluginDataDependencies, KeepZeros) {
    using namespace std::string_view_literals;
    EXPECT_THAT(split("a\0b, \0"sv), ElementsAre("a\0b"sv, "\0"sv));
}

}  // namespace
