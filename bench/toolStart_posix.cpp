// Group tool: commands of the companion tool from start to exit, against other programs.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "bench/groups.h"
#include "bench/pairs.h"
#include "bench/toolStage.h"

namespace {

using nBench::demand;

/// A program and its arguments.
using tCommandLine = std::vector<std::string>;

tCommandLine ziptra(tCommandLine arguments) {
    arguments.insert(arguments.begin(), "build/native-bench/bin/ziptra");
    return arguments;
}

tCommandLine reader(tCommandLine arguments) {
    arguments.insert(arguments.begin(), "build/native-bench/bin/reader");
    return arguments;
}

/// Runs the program without an environment, and with this as its standard output. Demands the exit code.
void run(tCommandLine commandLine, int output, int exitCode) {
    std::vector<char*> arguments;
    for (std::string& argument : commandLine) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    std::array<char*, 1> environment{};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t process = 0;
    const int error = posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environment.data());
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    if (error == 0) waitpid(process, &status, 0);
    demand(WIFEXITED(status) && WEXITSTATUS(status) == exitCode, commandLine.front() + " did not run well");
}

/// Runs the program and returns the beginning of what it writes. Requires: it writes less than a pipe takes.
std::string outputOf(const tCommandLine& commandLine) {
    std::array<int, 2> pipeEnds{};
    demand(pipe2(pipeEnds.data(), O_CLOEXEC) == 0, "no pipe can be made");
    run(commandLine, pipeEnds[1], 0);
    close(pipeEnds[1]);
    std::array<char, 100> text;  // NOLINT(cppcoreguidelines-pro-type-member-init): read fills it
    const ssize_t size = read(pipeEnds[0], text.data(), text.size());
    close(pipeEnds[0]);
    return {text.data(), static_cast<std::size_t>(size)};
}

nBench::tPair versionAgainstEmptyProgram() {
    const auto ours = [] { return outputOf(ziptra({"--version"})); };
    const auto peer = [] { return outputOf({"build/native-bench/bin/empty", "--version"}); };
    demand(ours().starts_with("ziptra ") && peer().empty(), "the programs print something else");
    return {nBench::repeat(20, ours), nBench::repeat(20, peer)};
}

/// Runs the program without anybody who reads what it prints.
void runSilently(const tCommandLine& commandLine, int exitCode) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    run(commandLine, nowhere, exitCode);
    close(nowhere);
}

nBench::tPair commandAgainstReader(const tCommandLine& arguments, int exitCode, const tCommandLine& places) {
    return {[command = ziptra(arguments), exitCode] { runSilently(command, exitCode); },
            [command = reader(places)] { runSilently(command, 0); }};
}

nBench::tPair statusAgainstReader(int count) {
    const std::string file = stageStatusFile(count);
    return commandAgainstReader({"status", file}, 1, {file});
}

nBench::tPair checkAgainstReader(int count) {
    const tStagedPlugins plugins = stagePlugins(count);
    tCommandLine arguments{"check", plugins.directory};
    arguments.insert(arguments.end(), plugins.options.begin(), plugins.options.end());
    return commandAgainstReader(arguments, 0, {plugins.directory, plugins.libraries});
}

}  // namespace

void addToolStartRows() {
    const int few = nBench::quick() ? 100 : 1'000;
    const int many = 10 * few;
    nBench::addRow({"tool/check-command", "", few, [few] { return checkAgainstReader(few); }});
    nBench::addRow({"tool/status-command", "", many, [many] { return statusAgainstReader(many); }});
    nBench::addRow({"tool/version", "", 0, versionAgainstEmptyProgram});
}
