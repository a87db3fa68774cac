#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

struct tRun {
    int exitCode;
    std::string text;
};

/// Runs the program, which is in the same folder as this one, with these arguments and redirections of the shell.
tRun run(const std::string& arguments) {
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    FILE* const pipe = popen(("'" + (folder / "ziptra").string() + "' " + arguments).c_str(), "r");
    std::string text;
    for (int character = fgetc(pipe); character != EOF; character = fgetc(pipe)) {
        text += static_cast<char>(character);
    }
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
}

TEST(mainPosix, ReceivesItsArgumentsAndReturnsTheExitCode) {
    const tRun version = run("--version");
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.text.substr(0, 7), "ziptra ");
    const tRun unknown = run("'插件 🙂' 2>&1");
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_EQ(unknown.text, "ziptra: There is no command '插件 🙂'; see 'ziptra --help'\n");
}

TEST(mainPosix, SaysThatTheResultIsIncomplete) {
    const tRun full = run("--help 2>&1 >/dev/full");
    EXPECT_EQ(full.exitCode, 2);
    EXPECT_EQ(full.text, "ziptra: The result could not be written completely\n");
}

}  // namespace
