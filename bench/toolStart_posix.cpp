// Group tool: what it takes the companion tool to start and end, against an empty program.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>

#include "bench/groups.h"
#include "bench/pairs.h"

namespace {

using nBench::demand;

/// Runs the program with this argument and without an environment. Returns what it writes.
std::string run(const std::string& program, const char* argument) {
    std::array<int, 2> pipeEnds{};
    demand(pipe2(pipeEnds.data(), O_CLOEXEC) == 0, "no pipe can be made");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], STDOUT_FILENO);
    std::string name = program;
    std::string option = argument;
    const std::array<char*, 3> arguments{name.data(), option.data(), nullptr};
    std::array<char*, 1> environment{};
    pid_t process = 0;
    const int error = posix_spawn(&process, program.c_str(), &actions, nullptr, arguments.data(), environment.data());
    posix_spawn_file_actions_destroy(&actions);
    close(pipeEnds[1]);
    std::array<char, 100> text;  // NOLINT(cppcoreguidelines-pro-type-member-init): read fills it
    const ssize_t size = read(pipeEnds[0], text.data(), text.size());
    close(pipeEnds[0]);
    int status = -1;
    if (error == 0) waitpid(process, &status, 0);
    demand(status == 0, program + " did not run well");
    return {text.data(), static_cast<std::size_t>(size)};
}

nBench::tPair versionAgainstEmptyProgram() {
    const auto ours = [] { return run("build/native-bench/bin/ziptra", "--version"); };
    const auto peer = [] { return run("build/native-bench/bin/empty", "--version"); };
    demand(ours().starts_with("ziptra ") && peer().empty(), "the programs print something else");
    return {nBench::repeat(20, ours), nBench::repeat(20, peer)};
}

}  // namespace

void addToolStartRows() { nBench::addRow({"tool/version", "", 0, versionAgainstEmptyProgram}); }
