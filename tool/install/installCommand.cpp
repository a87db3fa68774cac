#include "tool/install/installCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "tool/install/installRun.h"
#include "tool/progress.h"

namespace nInstall {
namespace {

struct tArguments {
    tRequest request;
    tAccess access;
    bool print = false;
    bool json = false;
};

void runCommand(const tArguments& arguments, tContext& context) {
    tAccess access = arguments.access;
    tProgress progress(context, "waiting for the service", 0);
    access.readOnly = arguments.print;
    access.onWait = [&progress] { progress.advance(); };
    tOutput output = arguments.json ? tOutput::json : tOutput::text;
    if (arguments.print) output = tOutput::commandLines;
    run(arguments.request, output, thisSystem(access), context);
}

/// Adds a command with the options that all have in common.
std::shared_ptr<tArguments> addCommand(CLI::App& program, tContext& context, tKind kind, const std::string& name,
                                       const std::string& purpose) {
    CLI::App* const command = program.add_subcommand(name, purpose);
    auto arguments = std::make_shared<tArguments>();
    arguments->request.kind = kind;
    arguments->access.command = name;
    arguments->access.limitSeconds = 120;
    CLI::Option* const print = command->add_flag("--print", arguments->print,
                                                 "Print lines for PowerShell that do the same, and change nothing");
    command->add_flag("--json", arguments->json, "Print one JSON document")->excludes(print);
    command->callback([arguments, &context] { runCommand(*arguments, context); });
    return arguments;
}

void addLimit(CLI::App& command, tArguments& arguments, const std::string& what) {
    command.add_option("--limit", arguments.access.limitSeconds, "How many seconds the service may take to " + what)
        ->check(CLI::Range(1U, 86'400U))
        ->type_name("SECONDS")
        ->capture_default_str();
}

/// Adds what can be set.
void addSettings(CLI::App& command, tRequest& request) {
    command.add_option("--shared-dir", request.sharedDirectory, "The shared directory, if the machine has none yet")
        ->type_name("DIR");
    command.add_option("--start", request.start, "When the service starts; otherwise delayed")
        ->check(CLI::IsMember(std::vector<std::string>{"auto", "delayed", "demand"}))
        ->type_name("WHEN");
    command
        .add_option("--crash-dumps", request.crashDumps,
                    "The folder in which Windows stores a dump if the service crashes")
        ->type_name("DIR");
}

constexpr const char* exitCodes = "Exit code: 0 if everything is as requested, 2 if not.";

}  // namespace

void addCommands(CLI::App& program, tContext& context) {
    const auto install = addCommand(program, context, tKind::install, "install", "Install and start the service");
    CLI::App* command = program.get_subcommand("install");
    addSettings(*command, install->request);
    addLimit(*command, *install, "start");
    command->footer("Example: ziptra install --crash-dumps \"C:\\ProgramData\\Corvell dumps\"\n" +
                    std::string(exitCodes));

    const auto repair = addCommand(program, context, tKind::repair, "repair", "Set again all that 'install' sets");
    command = program.get_subcommand("repair");
    addSettings(*command, repair->request);
    command->footer("Example: ziptra repair --start auto\n" + std::string(exitCodes));

    const auto uninstall =
        addCommand(program, context, tKind::uninstall, "uninstall", "Stop and delete the service, but no plug-in");
    command = program.get_subcommand("uninstall");
    addLimit(*command, *uninstall, "stop");
    command->footer("Example: ziptra uninstall --limit 30\n" + std::string(exitCodes));
}

}  // namespace nInstall
