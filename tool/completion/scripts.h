#pragma once

#include <string>
#include <vector>

/// Scripts that complete the program's command line in a shell.
namespace nCompletion {

struct tOption {
    std::vector<std::string> names;    ///< "-h", "--help"
    bool takesValue = false;           ///< the next word belongs to it
    std::vector<std::string> choices;  ///< the values that it takes; empty if it takes others, too
    std::string purpose;               ///< one line
};

struct tCommand {
    std::string name;
    std::string purpose;  ///< one line
    std::vector<tOption> options;
    std::vector<std::string> choices;  ///< what its arguments may be; empty if they are files or others
};

/// The program's own options, which may follow each command too, and its commands.
struct tProgram {
    std::string name;
    std::vector<tOption> options;
    std::vector<tCommand> commands;
};

/// Return a script that defines the completion when the shell reads it. Files are completed wherever nothing else is
/// known. Requires: no name or choice contains white space, quotes or other characters that the shell interprets.
[[nodiscard]] std::string bashScript(const tProgram& program);
[[nodiscard]] std::string powershellScript(const tProgram& program);

}  // namespace nCompletion
