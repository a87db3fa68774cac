#include "tool/check/checkCommand.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "tool/check/prediction.h"
#include "tool/check/render.h"
#include "tool/finding.h"
#include "tool/plainText.h"
#include "tool/requestCommand.h"

namespace nCheck {
namespace {

struct tOptions {
    tRequest request;
    std::string note;
    bool json = false;
    bool strict = false;
    bool quiet = false;
};

void print(const tOptions& options, const tPrediction& prediction, tContext& context) {
    if (options.json) {
        context.out << toJson(prediction);
        return;
    }
    const bool anything = !prediction.findings.empty() || !prediction.messages.empty();
    if (anything || !options.quiet) context.out << toText(prediction, context.colour);
    if (anything && !options.note.empty()) context.out << nPlainText::printable(options.note) << '\n';
}

void run(const tOptions& options, tContext& context) {
    const tPrediction prediction = nRequest::predict(options.request, context);
    print(options, prediction, context);
    context.exitCode = nFinding::matter(prediction.findings, options.strict) ? exitFindings : exitNothingFound;
}

}  // namespace

void addCommand(CLI::App& program, tContext& context) {
    const auto options = std::make_shared<tOptions>();
    CLI::App* const command =
        program.add_subcommand("check", "Predict in which order plug-ins start, which of them fail, and why");
    command
        ->add_option("PLACE", options->request.places,
                     "Directories and description files; on Windows, otherwise this machine's plug-in directory")
        ->type_name("");
    nRequest::addAllowedOption(*command, options->request);
    nRequest::addMapOption(*command, options->request);
    command
        ->add_option("--assume", options->request.assumed,
                     "A plug-in that is described elsewhere: dependencies on it count as started; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command->add_flag("--json", options->json, "Print one JSON document");
    command->add_flag("--strict", options->strict, "Let warnings count for the exit code, too");
    command
        ->add_option("--note", options->note,
                     "A line for the end, if there is something to report: for builds, which command wrote the file")
        ->type_name("TEXT");
    command->add_flag("--quiet", options->quiet, "Print nothing if there is nothing to report, as builds like it");
    command->footer(
        "Example: ziptra check plugins\n"
        "Example, on a build server: ziptra check --strict --map \"C:\\Program Files\\X=dist\" plugins\n"
        "Exit code: 0 if there is no error, 1 if there is one, 2 if the command could not look.\n"
        "'ziptra explain ID' says more about a finding, such as chain-order.\n"
        "The service reads the descriptions when it starts: restart it after a correction.\n"
        "A description, for example scheduler.ini (a blank line is an error):\n"
        "  [Service]\n"
        "  Name=Scheduler\n"
        "  Dependencies=Transport, Settings\n"
        "  Path=C:\\Program Files\\X\\scheduler.dll\n"
        "  Initialize=SchedulerInitialize\n"
        "  Stop=SchedulerStop\n"
        "  Cleanup=SchedulerCleanup");
    command->callback([options, &context] { run(*options, context); });
}

}  // namespace nCheck
