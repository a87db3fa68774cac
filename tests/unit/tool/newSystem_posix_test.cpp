#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <sstream>
#include <string>

#include "tests/support/folder.h"
#include "tests/unit/tool/toolRun.h"
#include "tool/new/newRun.h"

namespace {

TEST(nNewSystemPosix, LeavesNoPartOfAFileIfTheDiskIsFull) {
    const support::tFolder folder;
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{1'000, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
    const std::string reason = nNew::thisSystem().createFile(folder.utf8("a"), std::string(2'000, 'a'));
    const support::tToolRun run({"new", "P", "--directory", folder.utf8()});
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(reason, "File too large");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.error, "ziptra: Cannot create '" + folder.utf8("P/CMakePresets.json") + "': File too large\n");
    EXPECT_TRUE(is_empty(folder.path()));
}

TEST(nNewSystemPosix, TreatsALinkThatLeadsNowhereAsExisting) {
    const support::tFolder folder;
    std::filesystem::create_symlink("none", folder.path() / "A");
    const support::tToolRun run({"new", "A", "--directory", folder.utf8()});
    EXPECT_THAT(run.error, testing::HasSubstr("' exists already"));
    EXPECT_TRUE(is_symlink(folder.path() / "A"));
}

TEST(nNewSystemPosix, LeavesAWholeProjectOrNoneWhenItIsInterrupted) {
    const support::tFolder folder;
    const nNew::tSystem system = nNew::thisSystem();
    int whole = 0;
    for (int round = 0; round < 40; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            std::ostringstream out;
            tContext context{out, out};
            for (int i = 0;; ++i) nNew::run({"P" + std::to_string(i), "c", folder.utf8()}, false, system, context);
        }
        usleep(static_cast<useconds_t>(3'000 + 137 * round));
        kill(child, round % 2 == 0 ? SIGINT : SIGTERM);
        waitpid(child, nullptr, 0);
        for (const auto& project : std::filesystem::directory_iterator(folder.path())) {
            ASSERT_EQ(std::distance(std::filesystem::directory_iterator(project), {}), 5) << project.path();
            ++whole;
            remove_all(project.path());
        }
    }
    EXPECT_GT(whole, 0);
}

}  // namespace
