// INI documents, descriptions, their order and the shared places when memory runs out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ini/parser.h"
#include "source/nPluginData.h"
#include "source/nPluginOrder.h"
#include "stdpath/path.h"
#include "stdpath/stdpath.h"
#include "stdpath/utf.h"
#include "tests/support/folder.h"
#include "tests/support/iniFile.h"
#include "tests/support/report.h"
#include "tests/support/statusRecord.h"
#include "tests/support/stdpath.h"
#include "tests/sweep/memory.h"

namespace {

using sweep::eachAllocationFails;
using sweep::tAttempt;
using testing::ElementsAre;

/// Everything in it needs memory: indexed lists, long names and values, lines over several chunks, joined keys.
std::string demandingText() {
    std::string text;
    for (int section = 0; section < 10; ++section) {
        text += "[a section with a rather long name " + std::to_string(section) + "]\n";
        for (int key = 0; key < 12; ++key) {
            text += "a key with a rather long name " + std::to_string(key) + "=a value that is no shorter\n";
        }
    }
    return text + "Text Line1=" + std::string(3000, 'x') + "\nText Line2=" + std::string(6000, 'y') + "\n";
}

TEST(MemoryOfIniFiles, ADocumentIsMadeOrThereIsNone) {
    const auto makes = [](tAttempt& attempt) {
        nIni::tDocumentPointer document;
        attempt.operate([&] { document.reset(nIni::create()); });
        EXPECT_EQ(document == nullptr, attempt.struck());
    };
    EXPECT_EQ(eachAllocationFails("create", makes), 1);
}

TEST(MemoryOfIniFiles, AParseReturnsMinus12OrReadsTheWholeFile) {
    const tIniFile file(demandingText());
    const std::wstring path = file.widePath();
    const std::string whole = parsed(demandingText());
    const auto parses = [&](tAttempt& attempt) {
        nIni::tDocument document;
        int result = 1;
        attempt.operate([&] { result = nIni::parseFile(document, path.c_str()); });
        EXPECT_TRUE(result == 0 || (result == -12 && attempt.struck())) << result;
        if (result == 0) {
            EXPECT_EQ(describe(document), whole);
        } else {
            EXPECT_EQ(document.filePath[0], 0);
            EXPECT_EQ(document.fileTime, 0U);
        }
        EXPECT_EQ(nIni::parseFile(document, path.c_str()), 0) << "the document is fit for another parse";
        EXPECT_EQ(describe(document), whole);
    };
    EXPECT_GT(eachAllocationFails("parseFile", parses), 40);
}

TEST(MemoryOfIniFiles, ALookUpFindsWhatIsThere) {
    const tIniFile file(demandingText());
    const auto looksUp = [&](tAttempt& attempt) {
        nIni::tDocument document;
        ASSERT_EQ(file.parseInto(document), 0);
        for (nIni::tSection& section : document.sections) section.keyIndex.reset();
        document.sectionIndex.reset();
        nIni::tSection* section = nullptr;
        nIni::tKey* key = nullptr;
        attempt.operate([&] {
            section = nIni::findSection(document, "A section with a rather long name 7");
            key = nIni::findKey(*section, false, "A key with a rather long name 11");
        });
        EXPECT_EQ(section, &document.sections[7]);
        EXPECT_EQ(key, &document.sections[7].keys[11]);
    };
    EXPECT_GE(eachAllocationFails("findSection and findKey", looksUp), 2);
}

/// Either all fields of the record are replaced or none.
TEST(MemoryOfDescriptions, ADescriptionIsReadWholeOrTheRecordIsAsItWas) {
    const support::tFolder folder;
    const std::string path = folder.write(
        "a.ini",
        "[Service]\nName=a plug-in with a rather long name\nDependencies=one that it needs very much, and "
        "one of a name as long\nPath=C:\\a folder\\a library.dll\nRequires=3\nInitialize=a long name of an "
        "entry\nStop=another long name of one\nCleanup=and yet another long name\n");
    const auto reads = [&](tAttempt& attempt) {
        tPluginDescription record{"earlier", {"x", "y"}, 6, "earlier.dll", "i", "s", "c"};
        attempt.operate([&] { nPluginData::readDescription(path, record); });
        if (record.name == "earlier") {
            EXPECT_THAT(record.dependencies, ElementsAre("x", "y"));
            EXPECT_EQ(record.requiresMask, 6U);
            EXPECT_EQ(record.path + record.initialize + record.stop + record.cleanup, "earlier.dllisc");
            EXPECT_TRUE(attempt.struck());
        } else {
            EXPECT_EQ(attempt.code(), 0);
            EXPECT_EQ(record.name, "a plug-in with a rather long name");
            EXPECT_THAT(record.dependencies, ElementsAre("and one of a name as long", "one that it needs very much"));
            EXPECT_EQ(record.requiresMask, 3U);
            EXPECT_EQ(record.cleanup, "and yet another long name");
        }
        EXPECT_THAT(attempt.code(), testing::AnyOf(0, -12, -52000));
    };
    EXPECT_GT(eachAllocationFails("readDescription", reads), 18);
}

TEST(MemoryOfDescriptions, DependenciesAreSplitOrThereIsMinus52000) {
    const auto splits = [](tAttempt& attempt) {
        std::vector<std::string> list;
        attempt.operate(
            [&] { nPluginData::splitDependencies("one that it needs very much, and one of a name as long,,", list); });
        EXPECT_EQ(attempt.code(), attempt.struck() ? -52000 : 0);
        if (!attempt.struck()) {
            EXPECT_THAT(list, ElementsAre("one that it needs very much", "and one of a name as long"));
        }
    };
    EXPECT_GT(eachAllocationFails("splitDependencies", splits), 4);
}

TEST(MemoryOfDescriptions, AFolderIsListedOrThereIsAnError) {
    const support::tFolder folder;
    std::vector<std::string> paths;
    for (const char* name : {"a.ini", "b.txt", "c.ini", "d.ini"}) paths.push_back(folder.write(name, ""));
    paths.erase(paths.begin() + 1);
    const boost::filesystem::path directory = nStdPath::pathFromUtf8(folder.utf8(""));
    const auto lists = [&](tAttempt& attempt) {
        std::vector<std::string> files;
        attempt.operate([&] { nPluginData::listDescriptionFiles(directory, ".ini", files); });
        EXPECT_THAT(attempt.code(), testing::AnyOf(0, -52000, -52003));
        EXPECT_TRUE(attempt.code() == 0 || attempt.struck());
        std::sort(files.begin(), files.end());
        EXPECT_TRUE(std::includes(paths.begin(), paths.end(), files.begin(), files.end())) << "whole names";
        if (attempt.code() == 0) {
            EXPECT_EQ(files, paths);
        }
    };
    EXPECT_GT(eachAllocationFails("listDescriptionFiles", lists), 4);
}

TEST(MemoryOfDescriptions, AreOrderedOrAsTheyWere) {
    const auto sorts = [](tAttempt& attempt) {
        std::vector<tPluginDescription> descriptions(40);
        for (std::size_t i = 0; i < descriptions.size(); ++i) {
            descriptions[i].name = "a plug-in with a rather long name " + std::to_string(199 - i);
        }
        attempt.operate([&] { nPluginOrder::sort(descriptions); });
        EXPECT_EQ(attempt.code(), attempt.struck() ? -52000 : 0);
        ASSERT_EQ(descriptions.size(), 40U);
        for (std::size_t i = 0; i < descriptions.size(); ++i) {
            const std::size_t number = attempt.struck() ? 199 - i : 160 + i;
            EXPECT_EQ(descriptions[i].name, "a plug-in with a rather long name " + std::to_string(number));
        }
    };
    EXPECT_GT(eachAllocationFails("sort", sorts), 1);
}

/// The result is complete or unchanged; a failure is an exception or in the record.
int sweepDirectory(const char* name, void (*operation)(std::string& result, zuerr::StatusRecord& status),
                   const std::string& expected) {
    return eachAllocationFails(name, [&](tAttempt& attempt) {
        support::tSharedPlaces places;
        places.sharedDirectory = R"(  D:\Shared by all the software of the maker on this machine\\)";
        places.appDataFolder = R"(D:\Data of all users)";
        std::string result = "earlier";
        zuerr::StatusRecord status;
        attempt.operate([&] { operation(result, status); });
        if (status.json != nullptr) {
            EXPECT_TRUE(report::wellLaidOut(status));
        }
        EXPECT_TRUE(status.code == 0 || status.code == -52000) << status.code;
        EXPECT_TRUE(attempt.code() == 0 || attempt.code() == -52000) << attempt.code();
        const bool failed = status.code != 0 || attempt.code() != 0;
        EXPECT_EQ(failed, attempt.struck());
        if (!failed) {
            EXPECT_EQ(result, expected);
        }
    });
}

TEST(MemoryOfSharedPlaces, TheSharedDirectoryIsFoundOrThereIsMinus52000) {
    EXPECT_GT(sweepDirectory("getSharedDirectory", nStdPath::getSharedDirectory,
                             "D:\\Shared by all the software of the maker on this machine"),
              1);
}

TEST(MemoryOfSharedPlaces, TheDataDirectoryIsFoundOrThereIsMinus52000) {
    EXPECT_GT(sweepDirectory("getCommonAppDataDirectory", nStdPath::getCommonAppDataDirectory,
                             "D:\\Data of all users\\Corvell"),
              1);
}

TEST(MemoryOfSharedPlaces, AFailureToFindThemKeepsItsCode) {
    const auto fails = [](tAttempt& attempt) {
        const support::tSharedPlaces places;  // none
        std::string result = "earlier";
        zuerr::StatusRecord status;
        attempt.operate([&] { nStdPath::getSharedDirectory(result, status); });
        EXPECT_TRUE(status.code == -52006 || (attempt.struck() && status.code == -52000)) << status.code;
        EXPECT_EQ(result, "earlier");
        if (status.json != nullptr) {
            EXPECT_TRUE(report::wellLaidOut(status));
            report::parsed(status.json);
        }
    };
    EXPECT_GT(eachAllocationFails("getSharedDirectory, failing", fails), 0);
}

TEST(MemoryOfSharedPlaces, ThePluginDirectoryIsFoundOrThereIsMinus52000) {
    const auto finds = [](tAttempt& attempt) {
        support::tSharedPlaces places;
        places.sharedDirectory = "/shared by all the software of the maker on this machine";
        boost::filesystem::path directory;
        attempt.operate([&] { directory = nStdPath::getPluginDirectory(); });
        EXPECT_EQ(attempt.code(), attempt.struck() ? -52000 : 0);
        if (!attempt.struck()) {
            EXPECT_EQ(directory.filename(), "plugins");
        }
    };
    EXPECT_GT(eachAllocationFails("getPluginDirectory", finds), 3);
}

TEST(MemoryOfPaths, AreConvertedOrThereIsMinus52000) {
    const std::string text = "D:/a folder of some length/größe/计划 🚀.ini";
    const auto converts = [&](tAttempt& attempt) {
        std::string back;
        std::u16string name;
        std::wstring wide;
        std::string appended = "before ";
        attempt.operate([&] {
            back = nStdPath::pathToUtf8(nStdPath::pathFromUtf8(text));
            wide = nStdPath::widePathFromUtf8(text);
            name = nStdPath::fileNameFromUtf8(text);
            nStdPath::wideToUtf8(name.data(), name.data() + name.size(), appended);
            nStdPath::trimPath(appended);
        });
        EXPECT_EQ(attempt.code(), attempt.struck() ? -52000 : 0);
        if (attempt.struck()) return;
        EXPECT_EQ(back, text);
        EXPECT_EQ(nStdPath::fileNameToUtf8(name), text);
        EXPECT_EQ(appended, "before " + text);
    };
    EXPECT_GT(eachAllocationFails("paths and UTF-16", converts), 6);
}

}  // namespace
