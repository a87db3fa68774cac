#include "tool/outputFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "tests/support/folder.h"

namespace {

class nOutputFileTest : public testing::Test {
protected:
    [[nodiscard]] std::ptrdiff_t files() const {
        return std::distance(std::filesystem::directory_iterator(folder.path()), {});
    }
    /// Returns the sentence with which the replacement fails.
    static std::string failure(const std::string& path) {
        try {
            nOutputFile::replace(path, "new");
        } catch (const nOutputFile::tCannotWrite& exception) {
            return exception.what();
        }
        return "no failure";
    }

    support::tFolder folder;
};

TEST_F(nOutputFileTest, CreatesTheFileWithExactlyTheseBytes) {
    const std::string content("one\ntwo\r\n\0\xFF", 11);
    nOutputFile::replace(folder.utf8("a.json"), content);
    EXPECT_EQ(folder.read("a.json"), content);
    EXPECT_EQ(files(), 1);
}

TEST_F(nOutputFileTest, ReplacesTheWholeContent) {
    for (const std::string& content : {std::string(100'000, 'a'), std::string("short"), std::string()}) {
        nOutputFile::replace(folder.utf8("a.json"), content);
        EXPECT_EQ(folder.read("a.json"), content);
    }
    EXPECT_EQ(files(), 1);
}

TEST_F(nOutputFileTest, AcceptsNamesInAnyScript) {
    const std::filesystem::path name(u"插件 🙂.prom");
    nOutputFile::replace(folder.utf8(name), "text");
    EXPECT_EQ(folder.read(name), "text");
}

TEST_F(nOutputFileTest, AcceptsANameThatIsAsLongAsNamesMayBe) {
    const std::string path = folder.utf8(std::string(250, 'a'));
    nOutputFile::replace(path, "old");
    nOutputFile::replace(path, "new");
    EXPECT_EQ(folder.read(std::string(250, 'a')), "new");
    EXPECT_EQ(files(), 1);
}

TEST_F(nOutputFileTest, SaysThatANameIsTooLong) {
    const std::string path = folder.utf8(std::string(256, 'a'));
    EXPECT_THAT(failure(path), testing::StartsWith("Cannot write '" + path + "': "));
    EXPECT_EQ(files(), 0);
}

TEST_F(nOutputFileTest, SaysWhyItFailedAndLeavesNothingBehind) {
    const std::string missing = folder.utf8("missing/a.json");
    EXPECT_THAT(failure(missing), testing::StartsWith("Cannot write '" + missing + "': "));
    EXPECT_GT(failure(missing).size(), ("Cannot write '" + missing + "': ").size());
    folder.makeFolder("folder/inside");
    EXPECT_THAT(failure(folder.utf8("folder")), testing::StartsWith("Cannot write '"));
    EXPECT_TRUE(folder.has("folder/inside"));
    EXPECT_EQ(files(), 1);
}

TEST_F(nOutputFileTest, ShowsAConcurrentReaderAWholeFile) {
    constexpr std::size_t size = 20'000;
    const std::string path = folder.utf8("a");
    nOutputFile::replace(path, std::string(size, 'a'));
    std::atomic<int> whole = 0;
    std::atomic<int> torn = 0;
    std::atomic<bool> done = false;
    std::thread reader([&] {
        while (!done) {
            std::ifstream file(folder.path() / "a", std::ios::binary);
            if (!file) continue;  // on Windows, at the moment of the replacement
            const std::string seen{std::istreambuf_iterator<char>(file), {}};
            const bool isWhole = seen.size() == size && seen.find_first_not_of(seen[0]) == std::string::npos;
            ++(isWhole ? whole : torn);
        }
    });
    int failures = 0;
    for (int i = 0; i < 500 && (i < 50 || whole < 20); ++i) {
        try {
            nOutputFile::replace(path, std::string(size, static_cast<char>('a' + i % 26)));
        } catch (const nOutputFile::tCannotWrite&) {
            ++failures;  // on Windows, while a reader has the file open
        }
    }
    done = true;
    reader.join();
    EXPECT_EQ(torn, 0);
    EXPECT_GE(whole, 20);
    EXPECT_LT(failures, 500);
    EXPECT_EQ(files(), 1);
}

}  // namespace
