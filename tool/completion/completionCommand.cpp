#include "tool/completion/completionCommand.h"

#include <CLI/CLI.hpp>
#include <array>
#include <ostream>

#include "tool/completion/scripts.h"

namespace nCompletion {
namespace {

/// Returns the values of an option that takes one of a set. The parser knows them only as a part of the type's name,
/// such as "TEXT:{auto,always}".
std::vector<std::string> choicesOf(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}', open);
    if (close == std::string::npos) return {};
    return CLI::detail::split(type.substr(open + 1, close - open - 1), ',');
}

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

tOption describe(const CLI::Option& option) {
    tOption described;
    described.takesValue = option.get_items_expected_max() > 0;
    described.choices = choicesOf(option);
    described.purpose = firstLine(option.get_description());
    for (const std::string& name : option.get_snames()) described.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) described.names.push_back("--" + name);
    return described;
}

std::vector<tOption> optionsOf(const CLI::App& command) {
    std::vector<tOption> options;
    for (const CLI::Option* const option : command.get_options()) {
        if (option->nonpositional()) options.push_back(describe(*option));
    }
    return options;
}

/// Returns what the arguments that are no options may be.
std::vector<std::string> argumentsOf(const CLI::App& command) {
    std::vector<std::string> choices;
    for (const CLI::Option* const option : command.get_options()) {
        if (!option->get_positional()) continue;
        const std::vector<std::string> more = choicesOf(*option);
        choices.insert(choices.end(), more.begin(), more.end());
    }
    return choices;
}

tProgram describe(const CLI::App& program) {
    tProgram described;
    described.name = program.get_name();
    described.options = optionsOf(program);
    for (const CLI::App* const command : program.get_subcommands({})) {
        tCommand& added = described.commands.emplace_back();
        added.name = command->get_name();
        added.purpose = firstLine(command->get_description());
        added.options = optionsOf(*command);
        added.choices = argumentsOf(*command);
    }
    return described;
}

constexpr std::array shells{"bash", "powershell"};

}  // namespace

void addCommand(CLI::App& program, tContext& context) {
    CLI::App* const command = program.add_subcommand("completion", "Print a script that completes commands in a shell");
    command->add_option("SHELL", "The shell: bash or powershell")
        ->required()
        ->option_text(" ")
        ->check(CLI::IsMember(std::vector<std::string>(shells.begin(), shells.end())));
    command->footer(
        "Example, in bash:       source <(ziptra completion bash)\n"
        "Example, in PowerShell: ziptra completion powershell | Out-String | Invoke-Expression");
    command->callback([&program, &context, command] {
        const bool bash = command->get_option("SHELL")->as<std::string>() == shells.front();
        const auto write = bash ? bashScript : powershellScript;
        context.out << write(describe(program));
    });
}

}  // namespace nCompletion
