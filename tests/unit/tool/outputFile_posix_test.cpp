#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/support/folder.h"
#include "tool/outputFile.h"

namespace {

unsigned rightsOf(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

class nOutputFilePosix : public testing::Test {
protected:
    [[nodiscard]] std::ptrdiff_t files() const {
        return std::distance(std::filesystem::directory_iterator(folder.path()), {});
    }

    support::tFolder folder;
    std::string path = folder.utf8("a");
};

TEST_F(nOutputFilePosix, LeavesTheRightsOfAFileAndGivesANewOneTheUsualOnes) {
    const mode_t before = umask(027);
    nOutputFile::replace(path, "text");
    umask(before);
    EXPECT_EQ(rightsOf(path), 0640U);
    chmod(path.c_str(), 0604);
    nOutputFile::replace(path, "text");
    EXPECT_EQ(rightsOf(path), 0604U);
}

TEST_F(nOutputFilePosix, ReplacesTheFileToWhichALinkLeads) {
    folder.write("a", "old");
    std::filesystem::create_symlink("a", folder.path() / "link");
    nOutputFile::replace(folder.utf8("link"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "link"));
    EXPECT_EQ(folder.read("a"), "new");
}

TEST_F(nOutputFilePosix, CreatesTheFileToWhichADanglingLinkLeads) {
    folder.makeFolder("below");
    std::filesystem::create_symlink("below/second", folder.path() / "first");
    std::filesystem::create_symlink(folder.path() / "a", folder.path() / "below/second");
    nOutputFile::replace(folder.utf8("first"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "first"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "below/second"));
    EXPECT_EQ(folder.read("a"), "new");
    EXPECT_EQ(files(), 3);
}

TEST_F(nOutputFilePosix, KeepsALinkThatLeadsIntoAMissingFolder) {
    std::filesystem::create_symlink("none/a", path);
    EXPECT_THROW(nOutputFile::replace(path, "new"), nOutputFile::tCannotWrite);
    EXPECT_TRUE(std::filesystem::is_symlink(path));
}

TEST_F(nOutputFilePosix, KeepsALinkThatLeadsToItself) {
    std::filesystem::create_symlink("a", path);
    EXPECT_THROW(nOutputFile::replace(path, "new"), nOutputFile::tCannotWrite);
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(files(), 1);
}

TEST_F(nOutputFilePosix, WritesToADeviceWithoutReplacingIt) {
    nOutputFile::replace("/dev/null", "text");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_THROW(nOutputFile::replace("/dev/full", "text"), nOutputFile::tCannotWrite);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    nOutputFile::replace(path, "text");
    char text[5] = {};
    EXPECT_EQ(read(reader, text, 4), 4);
    EXPECT_STREQ(text, "text");
    close(reader);
    EXPECT_TRUE(std::filesystem::is_fifo(path));
}

/// While it exists, standard output is this open file. Owns the file.
class tStandardOutput {
public:
    explicit tStandardOutput(int file) : before_(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        dup2(file, STDOUT_FILENO);
        close(file);
    }
    ~tStandardOutput() {
        dup2(before_, STDOUT_FILENO);
        close(before_);
    }
    tStandardOutput(const tStandardOutput&) = delete;
    tStandardOutput& operator=(const tStandardOutput&) = delete;

private:
    int before_;
};

TEST_F(nOutputFilePosix, AppendsToTheFileToWhichStandardOutputIsAppended) {
    folder.write("a", "old ");
    {
        const tStandardOutput output(open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
        nOutputFile::replace("/dev/stdout", "new");
    }
    EXPECT_EQ(folder.read("a"), "old new");
}

TEST_F(nOutputFilePosix, WritesToAnOpenFileWithoutAName) {
    folder.write("a", "");
    const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
    std::filesystem::remove(path);
    nOutputFile::replace("/proc/self/fd/" + std::to_string(file), "text");
    char text[5] = {};
    EXPECT_EQ(pread(file, text, 4, 0), 4);
    close(file);
    EXPECT_STREQ(text, "text");
    EXPECT_EQ(files(), 0);
}

TEST_F(nOutputFilePosix, ReportsADeviceThatMustNotBeWritten) {
    EXPECT_THROW(nOutputFile::replace("/", "text"), nOutputFile::tCannotWrite);
}

TEST_F(nOutputFilePosix, KeepsTheOldFileIfTheDiskIsFull) {
    folder.write("a", "old");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{10'000, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_THROW(nOutputFile::replace(path, std::string(20'000, 'a')), nOutputFile::tCannotWrite);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(folder.read("a"), "old");
    EXPECT_EQ(files(), 1);
}

TEST_F(nOutputFilePosix, LeavesNothingHalfWrittenWhenItIsInterrupted) {
    folder.write("a", std::string(50'000, 'a'));
    int interrupted = 0;
    for (int round = 0; round < 60; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            for (;;) nOutputFile::replace(path, std::string(50'000, static_cast<char>('a' + round % 26)));
        }
        usleep(static_cast<useconds_t>(2000 + 137 * round));
        kill(child, round % 2 == 0 ? SIGINT : SIGTERM);
        int status = 0;
        waitpid(child, &status, 0);
        interrupted += WIFSIGNALED(status) ? 1 : 0;
        const std::string content = folder.read("a");
        ASSERT_EQ(content.size(), 50'000U);
        ASSERT_EQ(content.find_first_not_of(content[0]), std::string::npos);
        ASSERT_EQ(files(), 1) << "a temporary file is left";
    }
    EXPECT_EQ(interrupted, 60) << "the signals only waited";
}

}  // namespace
