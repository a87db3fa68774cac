#include "stdpath/stdpath.h"

#include <gtest/gtest.h>

#include "stdpath/path.h"
#include "stdpath/systemError.h"
#include "tests/support/allocations.h"
#include "tests/support/exceptions.h"
#include "tests/support/stdpath.h"

namespace {

std::string text(std::u8string_view utf8) { return {utf8.begin(), utf8.end()}; }

/// Returns a record with an error, for which an operation does nothing.
struct tFailedStatus : zuerr::StatusRecord {
    tFailedStatus() { code = -7; }
};

std::string trimmed(std::string path) {
    nStdPath::trimPath(path);
    return path;
}

TEST(nStdPathTrimPath, RemovesEveryBackslashAtTheEnd) { EXPECT_EQ(trimmed("C:\\Data\\\\"), "C:\\Data"); }

TEST(nStdPathTrimPath, RemovesWhiteSpaceAtBothEnds) {
    EXPECT_EQ(trimmed("C:\\Data  "), "C:\\Data");
    EXPECT_EQ(trimmed("  C:\\Data"), "C:\\Data");
    EXPECT_EQ(trimmed(" \t\n\v\f\rC:\\My Data \t\n\v\f\r"), "C:\\My Data");
}

TEST(nStdPathTrimPath, RemovesWhiteSpaceZerosAndBackslashesAtTheEndInAnyOrder) {
    EXPECT_EQ(trimmed(std::string("C:\\Data\\ \0\\ \0\0", 14)), "C:\\Data");
}

TEST(nStdPathTrimPath, RemovesOnlyWhiteSpaceAtTheBeginning) {
    EXPECT_EQ(trimmed(" \\\\server\\share\\"), "\\\\server\\share");
    EXPECT_EQ(trimmed(std::string("\0 a", 3)), std::string("\0 a", 3));
}

TEST(nStdPathTrimPath, KeepsForwardSlashes) { EXPECT_EQ(trimmed("/Data/"), "/Data/"); }

TEST(nStdPathTrimPath, LeavesNothingOfATextWithNothingElseInIt) {
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed(std::string(" \\\0", 3)), "");
}

TEST(nStdPathTrimPath, KeepsBytesAbove127) {
    // NEL, no-break space and letters whose last bytes look like these: in UTF-8 none of the bytes is white space.
    EXPECT_EQ(trimmed("\x85\xA0 x \x85\xA0"), "\x85\xA0 x \x85\xA0");
    EXPECT_EQ(trimmed(text(u8"à计…")), text(u8"à计…"));
    for (int byte = 128; byte < 256; ++byte) {
        const std::string path(1, static_cast<char>(byte));
        EXPECT_EQ(trimmed(path), path);
    }
}

class nStdPathSharedDirectory : public testing::Test {
protected:
    std::string read() {
        nStdPath::getSharedDirectory(result, status);
        return result;
    }

    support::tSharedPlaces places;
    zuerr::StatusRecord status;
    std::string result = "as it was";
};

TEST_F(nStdPathSharedDirectory, IsTheTrimmedRegistryValueWithoutATerminatingZero) {
    const std::pair<std::string, std::string> rows[] = {{{"D:\\Shared\0", 10}, "D:\\Shared"},
                                                        {"no zero", "no zero"},
                                                        {{"  C:\\Data\\\\ \0", 12}, "C:\\Data"},
                                                        {"", ""},
                                                        {text(u8"D:\\größe\\计划 🚀\\"), text(u8"D:\\größe\\计划 🚀")}};
    for (const auto& [value, directory] : rows) {
        places.sharedDirectory = value;
        EXPECT_EQ(read(), directory);
    }
    EXPECT_EQ(status.code, 0);
    EXPECT_EQ(status.json, nullptr);
}

TEST_F(nStdPathSharedDirectory, HasCapacityForAppendedNames) {
    places.sharedDirectory = "D:\\Shared";
    result = "";
    result.shrink_to_fit();
    read();
    EXPECT_GE(result.capacity(), 256U);
}

TEST_F(nStdPathSharedDirectory, IsUnchangedAfterAFailure) {
    EXPECT_EQ(read(), "as it was");
    EXPECT_EQ(status.code, -52006);
    EXPECT_NE(std::string(status.json).find("RegQueryValue failed"), std::string::npos) << status.json;
}

TEST_F(nStdPathSharedDirectory, IsNotReadIfTheRecordContainsAnError) {
    places.sharedDirectory = "D:\\Shared";
    tFailedStatus failed;
    nStdPath::getSharedDirectory(result, failed);
    EXPECT_EQ(result, "as it was");
    EXPECT_EQ(failed.code, -7);
    EXPECT_EQ(failed.json, nullptr);
}

TEST_F(nStdPathSharedDirectory, IsReadIfTheRecordContainsAWarning) {
    places.sharedDirectory = "D:\\Shared";
    status.code = 5;
    EXPECT_EQ(read(), "D:\\Shared");
    EXPECT_EQ(status.code, 5);
}

class nStdPathAppDataDirectory : public nStdPathSharedDirectory {
protected:
    std::string read() {
        nStdPath::getCommonAppDataDirectory(result, status);
        return result;
    }
};

TEST_F(nStdPathAppDataDirectory, IsTheVendorsFolderInTheMachinesFolderAfterOneBackslash) {
    const std::string largest = "C:\\" + std::string(256, 'x');  // it fills the system's buffer
    const std::pair<std::string, std::string> rows[] = {
        {"C:\\ProgramData", "C:\\ProgramData\\Corvell"},
        {"C:\\", "C:\\Corvell"},
        {largest, largest + "\\Corvell"},
        {text(u8"D:\\größe\\计划 🚀"), text(u8"D:\\größe\\计划 🚀\\Corvell")}};
    for (const auto& [folder, directory] : rows) {
        places.appDataFolder = folder;
        EXPECT_EQ(read(), directory);
    }
    EXPECT_EQ(status.code, 0);
}

TEST_F(nStdPathAppDataDirectory, IsReplacedEvenAfterAFailureWhichOnlyTheRecordShows) {
    EXPECT_EQ(read(), "\\Corvell");
    EXPECT_EQ(status.code, -52006);
    EXPECT_STREQ(status.json,
                 R"({"error_constant":"kestStatusResourceNotFound","file":"zutolq\\stdpath","line":293,)"
                 R"("component":"zuZiptraRemoteService","internal_error":{"api":"hresult","code":-2147024894},)"
                 R"("zutolq_debug":{"desc":"SHGetFolderPathW failed"}})");
}

TEST_F(nStdPathAppDataDirectory, IsNotReadIfTheRecordContainsAnError) {
    places.appDataFolder = "C:\\ProgramData";
    tFailedStatus failed;
    nStdPath::getCommonAppDataDirectory(result, failed);
    EXPECT_EQ(result, "as it was");
    EXPECT_EQ(failed.code, -7);
}

TEST(nStdPathReaders, DoNotChangeTheBufferIfTheRecordContainsAnError) {
    support::tSharedPlaces places;
    places.sharedDirectory = "D:\\Shared";
    places.appDataFolder = "C:\\ProgramData";
    tFailedStatus failed;
    nStdPath::tWideBuffer wide;
    nStdPath::readRegistryString(u"SOFTWARE\\Corvell\\Common\\Installer", u"ZUSHAREDDIR64", 0, wide, failed);
    nStdPath::getKnownFolder(35, wide, failed);
    EXPECT_EQ(wide.size(), 0U);
    EXPECT_EQ(failed.code, -7);
}

class nStdPathPluginDirectory : public nStdPathSharedDirectory {
protected:
    const std::string separator =
        nStdPath::pathToUtf8(boost::filesystem::path::string_type(1, boost::filesystem::path::preferred_separator));

    static std::string compose() { return nStdPath::pathToUtf8(nStdPath::getPluginDirectory()); }
};

TEST_F(nStdPathPluginDirectory, IsTwoFoldersBelowTheSharedDirectory) {
    places.sharedDirectory = "D:\\Shared\\";
    EXPECT_EQ(compose(), "D:\\Shared" + separator + "ZiptraRemoteService" + separator + "plugins");
}

TEST_F(nStdPathPluginDirectory, UsesASlashAtTheEndOfTheSharedDirectoryAsTheSeparator) {
    places.sharedDirectory = "D:/Shared/";
    EXPECT_EQ(compose(), "D:/Shared/ZiptraRemoteService" + separator + "plugins");
}

TEST_F(nStdPathPluginDirectory, AcceptsASharedDirectoryInAnyScript) {
    places.sharedDirectory = text(u8"D:\\größe\\计划 🚀\\");
    EXPECT_EQ(compose(), text(u8"D:\\größe\\计划 🚀") + separator + "ZiptraRemoteService" + separator + "plugins");
}

TEST_F(nStdPathPluginDirectory, ThrowsTheFailureToFindTheSharedDirectory) {
    const std::string thrown = support::caughtReport(compose);
    EXPECT_TRUE(thrown.starts_with("-52006 ")) << thrown;
    EXPECT_NE(thrown.find(R"("line":256,)"), std::string::npos) << thrown;
}

TEST_F(nStdPathPluginDirectory, ThrowsNothingWhileAnExceptionIsPropagating) {
    support::whileUnwinding([this] { result = compose(); });
    EXPECT_EQ(result, "ZiptraRemoteService" + separator + "plugins");
}

TEST(nStdPathSystemErrorReport, ShowsAWin32ErrorUnsignedWithTheSystemsText) {
    zuerr::StatusRecord status;
    nStdPath::raiseSystemError(status, 232, {nStdPath::tSystemError::tKind::win32, 0xFFFFFFFE, "No \"such\" key.\r\n"},
                               "RegOpenKeyEx failed");
    EXPECT_EQ(status.code, -52006);
    EXPECT_STREQ(status.json,
                 R"({"error_constant":"kestStatusResourceNotFound","file":"zutolq\\stdpath","line":232,)"
                 R"("component":"zuZiptraRemoteService","internal_error":{"api":"win32","code":4294967294,)"
                 R"("string":"No \"such\" key.\r\n"},"zutolq_debug":{"desc":"RegOpenKeyEx failed"}})");
}

TEST(nStdPathSystemErrorReport, OmitsTheTextIfTheSystemHasNone) {
    zuerr::StatusRecord status;
    nStdPath::raiseSystemError(status, 256, {nStdPath::tSystemError::tKind::win32, 2}, "RegQueryValue failed");
    EXPECT_STREQ(status.json, R"({"error_constant":"kestStatusResourceNotFound","file":"zutolq\\stdpath","line":256,)"
                              R"("component":"zuZiptraRemoteService","internal_error":{"api":"win32","code":2},)"
                              R"("zutolq_debug":{"desc":"RegQueryValue failed"}})");
}

TEST(nStdPathSystemErrorReport, GrowsWithTheSystemsText) {
    const std::string longText(2000, 'x');
    zuerr::StatusRecord status;
    nStdPath::raiseSystemError(status, 256, {nStdPath::tSystemError::tKind::win32, 2, longText.c_str()}, "d");
    const std::string report = status.json;
    EXPECT_NE(report.find(longText), std::string::npos);
    EXPECT_TRUE(report.ends_with(R"(},"zutolq_debug":{"desc":"d"}})")) << report;
}

TEST(nStdPathSystemErrorReport, EndsBeforeTheFirstMemberForWhichThereIsNoMemory) {
    const std::string longText(600, 'x');
    zuerr::StatusRecord status;
    const nStdPath::tSystemError error{nStdPath::tSystemError::tKind::win32, 2, longText.c_str()};
    EXPECT_EQ(allocations::refused(1024, [&] { nStdPath::raiseSystemError(status, 256, error, "d"); }), 1);
    EXPECT_EQ(status.code, -52006);
    EXPECT_STREQ(status.json, R"({"error_constant":"kestStatusResourceNotFound","file":"zutolq\\stdpath","line":256,)"
                              R"("component":"zuZiptraRemoteService","internal_error":{"api":"win32","code":2}})")
        << "the description would have had room";
}

TEST(nStdPathSystemErrorReport, NeverReplacesAnEarlierError) {
    tFailedStatus failed;
    nStdPath::raiseSystemError(failed, 256, {nStdPath::tSystemError::tKind::win32, 2}, "d");
    EXPECT_EQ(failed.code, -7);
    EXPECT_EQ(failed.json, nullptr);
}

}  // namespace
