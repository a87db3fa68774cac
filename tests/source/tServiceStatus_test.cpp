#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <iterator>
#include <string>

#include "err/Exception.h"
#include "source/tService.h"
#include "tests/support/folder.h"
#include "tests/support/report.h"
#include "tests/support/serviceWorld.h"

namespace {

constexpr const char* fileName = "zuZiptraRemoteService.status";
constexpr const char* temporaryName = ".zuZiptraRemoteService.status.tmp";

std::string content(const std::filesystem::path& path) {
    std::ifstream file(path);  // as text: line ends are plain on every platform
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The record that a call throws: "code constant file line".
template <class Call>
std::string failureOf(Call call) {
    try {
        call();
        return "none";
    } catch (const zuerr::Exception& exception) {
        const auto report = report::parsed(exception.what());
        return std::to_string(exception.record.code) + " " + report.value("error_constant", "") + " " +
               report.value("file", "") + " " + std::to_string(report.value("line", 0));
    }
}

/// The text with every letter turned into A or a and every digit into 9; a day of one digit gets its second.
std::string shape(std::string text) {
    const auto byte = [](char character) { return static_cast<unsigned char>(character); };
    for (char& character : text) {
        if (std::isdigit(byte(character)) != 0) character = '9';
        if (std::islower(byte(character)) != 0) character = 'a';
        if (std::isupper(byte(character)) != 0) character = 'A';
    }
    const std::size_t day = text.find("  9");
    if (day != std::string::npos) text[day + 1] = '9';
    return text;
}

class StatusText : public testing::Test {
protected:
    StatusText() { startService(); }

    /// The whole status file after one more write.
    [[nodiscard]] std::string written() const {
        WriteStatus(*gService);
        return content(world.statusFolder / fileName);
    }

    support::tServiceWorld world;
};

TEST_F(StatusText, BeginsWithTheBannerAndTheTimeOfWriting) {
    const std::string text = written();
    const std::string banner = "ZU-Ziptra Remote Configuration and Deployment status\n";
    ASSERT_TRUE(text.starts_with(banner)) << text;
    EXPECT_EQ(shape(text.substr(banner.size())), "Aaaaaaa: Aaa Aaa 99 99:99:99 9999\nAaaaaaa: 9aaaaaaaaa\n\n");
}

TEST_F(StatusText, LeavesTheInitTimeOutWhileItIsZeroAndKeepsTheEmptyLine) {
    gService->initTimeMs = 0;
    EXPECT_NE(written().find("Allowed: 0xffffffff\n\n"), std::string::npos);
    EXPECT_EQ(written().find("Init Time"), std::string::npos);
}

TEST_F(StatusText, ShowsTheInitTimeInMilliseconds) {
    gService->initTimeMs = 1250;
    EXPECT_NE(written().find("Allowed: 0xffffffff\nInit Time 1250 ms\n\n"), std::string::npos);
}

TEST_F(StatusText, TellsAnInitTimeFromZeroByAll64BitsAndShowsTheLow32) {
    gService->initTimeMs = std::uint64_t{1} << 32U;
    EXPECT_NE(written().find("\nInit Time 0 ms\n"), std::string::npos);
}

TEST_F(StatusText, ShowsAMaskOfZeroAs0x0) {
    gService->allowedMask = 0;
    EXPECT_NE(written().find("\nAllowed: 0x0\n"), std::string::npos);
}

TEST_F(StatusText, ShowsTheMaskInLowerCaseWithoutLeadingZeros) {
    gService->allowedMask = 0xFFFFFFFD;
    EXPECT_NE(written().find("\nAllowed: 0xfffffffd\n"), std::string::npos);
    gService->allowedMask = 3;
    EXPECT_NE(written().find("\nAllowed: 0x3\n"), std::string::npos);
}

TEST_F(StatusText, ShowsTheTimeInDecimalBehindTheHexadecimalMask) {
    gService->initTimeMs = 255;
    EXPECT_NE(written().find("Init Time 255 ms"), std::string::npos);
}

TEST_F(StatusText, ShowsTheMessagesAsTheyAreAndThePlugInsBelow) {
    gService->messages = "first\nsecond\n";
    tPluginDescription plugin;
    plugin.name = "Alpha";
    gService->pluginManager.startAll({plugin}, 0);
    EXPECT_NE(written().find("\n\nfirst\nsecond\nAlpha (depends on )\n"), std::string::npos);
}

TEST_F(StatusText, LosesTheCarriageReturnsOfTheMessages) {
    gService->messages = "one\r\ntwo\r\r\n\rthree\n";
    EXPECT_NE(written().find("\n\none\ntwo\nthree\n"), std::string::npos);
}

TEST_F(StatusText, OfALockedUpFolderStopsNothing) {
    world.places.appDataFolder = world.plugins.string() + "/missing";
    EXPECT_NO_THROW(WriteStatus(*gService));
    EXPECT_FALSE(exists(world.plugins / "missing"));
}

TEST_F(StatusText, OfAnUnknownFolderStopsNothingAndKeepsTheOldFile) {
    const std::string before = written();
    gService->allowedMask = 0;
    world.places.appDataFolder.reset();
    EXPECT_NO_THROW(WriteStatus(*gService));
    EXPECT_EQ(content(world.statusFolder / fileName), before);
}

class StatusFileReplacement : public testing::Test {
protected:
    void write(const std::string& text) const { WriteStatusFile(folder.utf8(), "s.status", text); }
    [[nodiscard]] std::string status() const { return content(folder.path() / "s.status"); }
    [[nodiscard]] std::size_t files() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder.path()), {}));
    }

    support::tFolder folder;
};

TEST_F(StatusFileReplacement, WritesTheWholeTextAndLeavesNoTemporaryFile) {
    write("one\ntwo\n");
    EXPECT_EQ(status(), "one\ntwo\n");
    EXPECT_EQ(files(), 1U);
}

TEST_F(StatusFileReplacement, ReplacesALongerFileAsAWhole) {
    write("something long that must not show through\n");
    write("short\n");
    EXPECT_EQ(status(), "short\n");
}

TEST_F(StatusFileReplacement, WritesAnEmptyTextAsAnEmptyFile) {
    write("");
    EXPECT_EQ(status(), "");
    EXPECT_EQ(files(), 1U);
}

TEST_F(StatusFileReplacement, OverwritesAStaleTemporaryFile) {
    folder.write(".s.status.tmp", "left behind by a rename that failed, and longer");
    write("new\n");
    EXPECT_EQ(status(), "new\n");
    EXPECT_EQ(files(), 1U);
}

TEST_F(StatusFileReplacement, FailsAtLine207WithoutAFileWhenTheDirectoryDoesNotExist) {
    const auto call = [this] { WriteStatusFile(folder.utf8("missing"), fileName, "text"); };
    EXPECT_EQ(failureOf(call), "-52026 zukesterr_insufficientPermissions .\\source\\tService 207");
    EXPECT_EQ(files(), 0U);
}

TEST_F(StatusFileReplacement, FailsAtLine207AndKeepsTheOldFileWhenTheTemporaryFileCannotBeOpened) {
    write("old\n");
    folder.makeFolder(".s.status.tmp");
    EXPECT_EQ(failureOf([this] { write("new\n"); }),
              "-52026 zukesterr_insufficientPermissions .\\source\\tService 207");
    EXPECT_EQ(status(), "old\n");
}

TEST_F(StatusFileReplacement, FailsAtLine225AndLeavesTheCompleteTemporaryFileWhenTheNameIsTaken) {
    folder.makeFolder("s.status/occupied");
    EXPECT_EQ(failureOf([this] { write("new\n"); }),
              "-52026 zukesterr_insufficientPermissions .\\source\\tService 225");
    EXPECT_EQ(content(folder.path() / ".s.status.tmp"), "new\n");
}

TEST_F(StatusFileReplacement, RecoversOnceTheNameIsFreeAgain) {
    folder.makeFolder("s.status/occupied");
    EXPECT_NE(failureOf([this] { write("first\n"); }), "none");
    remove_all(folder.path() / "s.status");
    write("second\n");
    EXPECT_EQ(status(), "second\n");
    EXPECT_EQ(files(), 1U);
}

TEST_F(StatusFileReplacement, FindsADirectoryOfAnyScript) {
    const std::filesystem::path name(u"状态 и пробел 🙂");
    folder.makeFolder(name);
    WriteStatusFile(folder.utf8(name), fileName, "text\n");
    EXPECT_EQ(content(folder.path() / name / fileName), "text\n");
    EXPECT_FALSE(exists(folder.path() / name / temporaryName));
}

TEST_F(StatusFileReplacement, FailsForADirectoryThatIsNoUtf8) {
    const auto call = [this] { WriteStatusFile(folder.utf8() + "\\\xFF", fileName, "text"); };
    EXPECT_EQ(failureOf(call), "-52026 zukesterr_insufficientPermissions .\\source\\tService 207");
}

}  // namespace
