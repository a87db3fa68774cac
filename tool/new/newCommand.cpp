#include "tool/new/newCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "tool/new/newRun.h"

namespace nNew {

void addCommand(CLI::App& program, tContext& context) {
    struct tArguments {
        tRequest request;
        bool json = false;
    };
    CLI::App* const command = program.add_subcommand("new", "Create the project of a new plug-in");
    const auto arguments = std::make_shared<tArguments>();
    command->add_option("NAME", arguments->request.name, "The plug-in's name, and that of its folder")
        ->required()
        ->option_text(" ");
    command->add_option("--language", arguments->request.language, "The language of the source; otherwise c++")
        ->check(CLI::IsMember(std::vector<std::string>{"c", "c++", "rust"}))
        ->type_name("LANGUAGE");
    command->add_option("--directory", arguments->request.directory, "Where the folder is created; otherwise here")
        ->type_name("DIR");
    command->add_flag("--json", arguments->json, "Print one JSON document");
    command->footer(
        "Example: ziptra new Heartbeat --language c\n"
        "Exit code: 0 if the project was created, 2 if not.");
    command->callback([arguments, &context] { run(arguments->request, arguments->json, thisSystem(), context); });
}

}  // namespace nNew
