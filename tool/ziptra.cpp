#include "tool/ziptra.h"

#include <CLI/CLI.hpp>
#include <array>
#include <exception>
#include <new>
#include <ostream>
#include <string_view>

#include "tool/audit/auditCommand.h"
#include "tool/check/checkCommand.h"
#include "tool/completion/completionCommand.h"
#include "tool/console.h"
#include "tool/explain/explainCommand.h"
#include "tool/format.h"
#include "tool/graph/graphCommand.h"
#include "tool/install/installCommand.h"
#include "tool/new/newCommand.h"
#include "tool/plainText.h"
#include "tool/run/runCommand.h"
#include "tool/status/statusCommand.h"

namespace {

/// What the user asked for with --color.
constexpr std::array colourModes{"auto", "always", "never"};

void addCommands(CLI::App& program, tContext& context) {
    // In the order in which the help lists them.
    nCheck::addCommand(program, context);
    nExplain::addCommand(program, context);
    nStatus::addCommand(program, context);
    nGraph::addCommand(program, context);
    nRun::addCommand(program, context);
    nNew::addCommand(program, context);
    nInstall::addCommands(program, context);
    nAudit::addCommand(program, context);
    nCompletion::addCommand(program, context);
}

/// Sets what all commands have in common. A repeatable option takes one value each time, so that "--map A=B DIR" leaves
/// DIR alone; and a value in brackets is not a list. The help does not repeat for each option which others it excludes.
void adjustCommands(CLI::App& program) {
    for (CLI::App* const command : program.get_subcommands({})) {
        command->group("Commands");
        for (CLI::Option* const option : command->get_options()) {
            if (!option->get_positional()) option->allow_extra_args(false);
            if (!option->get_excludes().empty()) option->option_text(option->get_type_name() + " ");
        }
    }
}

/// Adds everything to the program that does not belong to one command.
void addCommon(CLI::App& program, tContext& context) {
    program.get_formatter()->label("SUBCOMMAND", "COMMAND");
    program.get_formatter()->label("Positionals", "Arguments");
    program.allow_windows_style_options(false);  // paths may begin with a slash
    program.fallthrough();                       // the options below may follow the command
    program.set_help_flag("-h,--help", "Show this help, or that of the command, and exit");
    program.set_version_flag("--version", "ziptra " ZIPTRA_VERSION, "Show the version and exit");
    const auto setColour = [&context](const std::string& mode) {
        if (mode != "auto") context.colour = mode == "always";
    };
    program.add_option_function<std::string>("--color", setColour, "Whether the text has colours")
        ->check(CLI::IsMember(std::vector<std::string>(colourModes.begin(), colourModes.end())))
        ->type_name("WHEN");
    program.require_subcommand(1);
    program.footer(
        "Examples:\n"
        "  ziptra check plugins        what the host will do with the descriptions in the folder plugins\n"
        "  ziptra status               what it did on this machine\n"
        "  ziptra explain Transport    why the plug-in Transport did not start\n"
        "  ziptra explain -52006       what this code means\n"
        "\n"
        "Exit code: 0 if there is nothing to report, 1 if there is, 2 if the command could not look.\n"
        "'ziptra COMMAND --help' shows the options of a command and an example.");
}

/// Returns one sentence about what is wrong with the arguments.
std::string describe(const CLI::App& program, const CLI::ParseError& error) {
    if (!program.get_subcommands().empty()) return error.what();
    if (program.remaining_size() > 0) {
        const std::string unknown = program.remaining().front();
        return fmt::format("There is no {} '{}'", unknown.starts_with('-') ? "option" : "command", unknown);
    }
    return error.get_name() == "RequiredError" ? "A command is missing" : error.what();
}

int reportBadArguments(const CLI::App& program, const CLI::ParseError& error, tContext& context) {
    std::string command = program.get_name();
    for (const CLI::App* const named : program.get_subcommands()) command += " " + named->get_name();
    context.error << fmt::format("ziptra: {}; see '{} --help'\n", nPlainText::printable(describe(program, error)),
                                 command);
    return exitCouldNotLook;
}

/// Requires a value after "--option=": the library would take the next argument instead, which may be a file to read.
void refuseMissingValues(const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        if (argument == "--") return;
        if (!argument.starts_with("--") || !argument.ends_with('=')) continue;
        throw CLI::ValidationError(argument.substr(0, argument.size() - 1), "a value is missing after '='");
    }
}

/// Parses the arguments and runs the command that they name.
int parseAndRun(CLI::App& program, const std::vector<std::string>& arguments, tContext& context) {
    try {
        refuseMissingValues(arguments);
        program.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));  // it takes them from the end
        return context.exitCode;
    } catch (const CLI::CallForHelp&) {
        context.out << program.help();
    } catch (const CLI::CallForVersion& version) {
        context.out << version.what() << '\n';
    } catch (const CLI::ParseError& error) {
        return reportBadArguments(program, error, context);
    }
    return exitNothingFound;
}

}  // namespace

int runZiptra(const std::vector<std::string>& arguments, tContext& context) {
    try {
        CLI::App program("Sees what the ZU-Ziptra remote service will do with its plug-ins, and why it did.", "ziptra");
        addCommon(program, context);
        addCommands(program, context);
        adjustCommands(program);
        const int exitCode = parseAndRun(program, arguments, context);
        if (context.out.flush()) return exitCode;
        context.error << "ziptra: The result could not be written completely\n";
    } catch (const std::bad_alloc&) {
        context.error << "ziptra: There is not enough memory\n";
    } catch (const std::exception& exception) {
        context.error << "ziptra: " << nPlainText::printable(exception.what()) << '\n';
    }
    return exitCouldNotLook;
}

int runZiptraOnConsole(const std::vector<std::string>& arguments) {
    using nConsole::tStandardStream;
    nConsole::tBuffer outBuffer([](std::string_view text) { return nConsole::write(tStandardStream::output, text); });
    nConsole::tBuffer errorBuffer([](std::string_view text) { return nConsole::write(tStandardStream::error, text); });
    std::ostream out(&outBuffer);
    std::ostream error(&errorBuffer);
    error << std::unitbuf;
    error.tie(&out);
    tContext context{out, error, nConsole::showsColours(tStandardStream::output),
                     nConsole::isTerminal(tStandardStream::error)};
    return runZiptra(arguments, context);
}
