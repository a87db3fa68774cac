#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cctype>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "source/tService.h"
#include "tests/support/caughtReports.h"
#include "tests/support/exceptions.h"
#include "tests/support/folder.h"
#include "tests/support/serviceWorld.h"
#include "tests/support/statusFailures.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* fileName = "zuZiptraRemoteService.status";
constexpr const char* temporaryName = ".zuZiptraRemoteService.status.tmp";

std::string content(const std::filesystem::path& path) {
    std::ifstream file(path);  // in text mode, lines end with LF on every platform
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Replaces every letter by A or a and every digit by 9, and pads a day of one digit.
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

class tServiceStatusText : public testing::Test {
protected:
    tServiceStatusText() { startService(); }

    /// Writes the status file again and returns its content.
    [[nodiscard]] std::string written() const {
        WriteStatus(*gService);
        return content(world.statusFolder / fileName);
    }

    support::tServiceWorld world;
};

TEST_F(tServiceStatusText, BeginsWithTheBannerAndTheTimeOfWriting) {
    const std::string text = written();
    const std::string banner = "ZU-Ziptra Remote Configuration and Deployment status\n";
    ASSERT_TRUE(text.starts_with(banner)) << text;
    EXPECT_EQ(shape(text.substr(banner.size())), "Aaaaaaa: Aaa Aaa 99 99:99:99 9999\nAaaaaaa: 9aaaaaaaaa\n\n");
}

TEST_F(tServiceStatusText, ShowsTheStateOfTheServiceAndItsPlugins) {
    gService->allowedMask = 0xFFFFFFFD;
    gService->initTimeMs = 1250;
    gService->messages = "first\nsecond\n";
    tPluginDescription plugin;
    plugin.name = "Alpha";
    gService->pluginManager.startAll({plugin}, 0);
    const char* const expected = "\nAllowed: 0xfffffffd\nInit Time 1250 ms\n\nfirst\nsecond\nAlpha (depends on )\n";
    EXPECT_THAT(written(), HasSubstr(expected));
}

TEST_F(tServiceStatusText, RemovesTheCarriageReturnsOfTheMessages) {
    gService->messages = "one\r\ntwo\r\r\n\rthree\n";
    EXPECT_NE(written().find("\n\none\ntwo\nthree\n"), std::string::npos);
}

TEST_F(tServiceStatusText, AMissingFolderIsIgnored) {
    world.places.appDataFolder = world.plugins.string() + "/missing";
    EXPECT_NO_THROW(WriteStatus(*gService));
    EXPECT_FALSE(exists(world.plugins / "missing"));
}

TEST_F(tServiceStatusText, AnUnknownFolderIsIgnoredAndTheOldFileIsKept) {
    const std::string before = written();
    gService->allowedMask = 0;
    world.places.appDataFolder.reset();
    EXPECT_NO_THROW(WriteStatus(*gService));
    EXPECT_EQ(content(world.statusFolder / fileName), before);
}

TEST_F(tServiceStatusText, AnUnknownFolderIsTracedLikeAnyOtherFailure) {
    world.places.appDataFolder.reset();
    const support::tCaughtReports reports;
    WriteStatus(*gService);
    EXPECT_THAT(reports.texts, ElementsAre(HasSubstr("kestStatusResourceNotFound")));
}

class tServiceStatusReplacement : public testing::Test {
protected:
    void write(const std::string& text) const { WriteStatusFile(folder.utf8(), "s.status", text); }
    [[nodiscard]] std::string status() const { return content(folder.path() / "s.status"); }
    [[nodiscard]] std::size_t files() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder.path()), {}));
    }

    support::tFolder folder;
};

TEST_F(tServiceStatusReplacement, WritesTheWholeTextAndLeavesNoTemporaryFile) {
    write("one\ntwo\n");
    EXPECT_EQ(status(), "one\ntwo\n");
    EXPECT_EQ(files(), 1U);
}

TEST_F(tServiceStatusReplacement, ReplacesALongerFileAsAWhole) {
    write("something long that must not show through\n");
    write("short\n");
    EXPECT_EQ(status(), "short\n");
}

TEST_F(tServiceStatusReplacement, WritesAnEmptyTextAsAnEmptyFile) {
    write("");
    EXPECT_EQ(status(), "");
    EXPECT_EQ(files(), 1U);
}

TEST_F(tServiceStatusReplacement, OverwritesAStaleTemporaryFile) {
    folder.write(".s.status.tmp", "left behind by a rename that failed, and longer");
    write("new\n");
    EXPECT_EQ(status(), "new\n");
    EXPECT_EQ(files(), 1U);
}

TEST_F(tServiceStatusReplacement, FailsAtLine207WithoutAFileWhenTheDirectoryDoesNotExist) {
    const auto call = [this] { WriteStatusFile(folder.utf8("missing"), fileName, "text"); };
    EXPECT_EQ(support::caughtReport(call), support::openFailed);
    EXPECT_EQ(files(), 0U);
}

TEST_F(tServiceStatusReplacement, FailsAtLine207AndKeepsTheOldFileWhenTheTemporaryFileCannotBeOpened) {
    write("old\n");
    folder.makeFolder(".s.status.tmp");
    EXPECT_EQ(support::caughtReport([this] { write("new\n"); }), support::openFailed);
    EXPECT_EQ(status(), "old\n");
}

TEST_F(tServiceStatusReplacement, FailsAtLine225AndLeavesTheCompleteTemporaryFileWhenTheNameIsTaken) {
    folder.makeFolder("s.status/occupied");
    EXPECT_EQ(support::caughtReport([this] { write("new\n"); }), support::renameFailed);
    EXPECT_EQ(content(folder.path() / ".s.status.tmp"), "new\n");
}

TEST_F(tServiceStatusReplacement, RecoversOnceTheNameIsFreeAgain) {
    folder.makeFolder("s.status/occupied");
    EXPECT_NE(support::caughtReport([this] { write("first\n"); }), "nothing");
    remove_all(folder.path() / "s.status");
    write("second\n");
    EXPECT_EQ(status(), "second\n");
    EXPECT_EQ(files(), 1U);
}

TEST_F(tServiceStatusReplacement, AcceptsADirectoryInAnyScript) {
    const std::filesystem::path name(u"状态 и пробел 🙂");
    folder.makeFolder(name);
    WriteStatusFile(folder.utf8(name), fileName, "text\n");
    EXPECT_EQ(content(folder.path() / name / fileName), "text\n");
    EXPECT_FALSE(exists(folder.path() / name / temporaryName));
}

TEST_F(tServiceStatusReplacement, ShowsAConcurrentReaderAWholeFileOrNone) {
    constexpr std::size_t size = 20'000;
    std::atomic<int> whole = 0;
    std::atomic<int> torn = 0;
    std::atomic<bool> done = false;
    std::thread reader([&] {
        while (!done) {
            std::ifstream file(folder.path() / "s.status", std::ios::binary);
            if (!file) continue;  // for a moment there is no file
            const std::string seen{std::istreambuf_iterator<char>(file), {}};
            // Every text is one letter, repeated.
            const bool isWhole = seen.size() == size && seen.find_first_not_of(seen[0]) == std::string::npos;
            ++(isWhole ? whole : torn);
        }
    });
    // On Windows a reader may keep the name in use: the write then fails, and the old file stays.
    for (int i = 0; i < 2000 && (i < 50 || whole < 20); ++i) {
        support::caughtReport([&] { write(std::string(size, static_cast<char>('a' + i % 26))); });
    }
    done = true;
    reader.join();
    EXPECT_EQ(torn, 0);
    EXPECT_GE(whole, 20);
}

TEST_F(tServiceStatusReplacement, FailsForADirectoryThatIsNotUtf8) {
    const auto call = [this] { WriteStatusFile(folder.utf8() + "\\\xFF", fileName, "text"); };
    EXPECT_EQ(support::caughtReport(call), support::openFailed);
}

}  // namespace
