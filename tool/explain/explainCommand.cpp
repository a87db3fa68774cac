#include "tool/explain/explainCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <variant>

#include "tool/check/similarNames.h"
#include "tool/explain/explainText.h"
#include "tool/format.h"
#include "tool/plainText.h"
#include "tool/requestCommand.h"
#include "tool/status/statusSource.h"

namespace nExplain {
namespace {

struct tArguments {
    std::string subject;
    std::string statusFile;
    nCheck::tRequest request;
    bool json = false;
    bool plugin = false;
    bool markdown = false;
};

constexpr std::size_t longestNumber = 40;  // in a message

/// Reads the status file. Without one the prediction must do, unless the user has named it.
void addStatus(const tArguments& arguments, tEvidence& evidence) {
    try {
        evidence.statusFile = arguments.statusFile.empty() ? nStatus::hostsFile() : arguments.statusFile;
        evidence.status = nStatus::readReport(evidence.statusFile);
    } catch (const nStatus::tCannotRead& failure) {
        if (!arguments.statusFile.empty()) throw;
        evidence.obstacles.push_back(fmt::format("{}.", failure.what()));
    }
}

/// Predicts for the features that the machine allowed when the status file was written.
void addPrediction(const tArguments& arguments, tEvidence& evidence, tContext& context) {
    nCheck::tRequest request = arguments.request;
    if (evidence.status) request.allowedMask = evidence.status->allowedMask;
    try {
        usePrediction(nRequest::predict(request, context), evidence);
    } catch (const nCheck::tCannotLook& failure) {
        if (!request.places.empty()) throw;
        evidence.obstacles.push_back(fmt::format("{}.", failure.what()));
    }
}

void explainPlugin(const tArguments& arguments, tContext& context) {
    tEvidence evidence;
    addStatus(arguments, evidence);
    addPrediction(arguments, evidence, context);
    if (!evidence.status && !evidence.prediction) {
        for (const std::string& obstacle : evidence.obstacles) {
            context.error << "ziptra: " << nPlainText::printable(obstacle) << '\n';
        }
        context.exitCode = exitCouldNotLook;
        return;
    }
    const tPluginExplanation explanation = explainPlugin(arguments.subject, evidence);
    context.out << (arguments.json ? toJson(explanation) : toText(explanation, context.colour));
    if (explanation.verdict == tVerdict::unknown) context.exitCode = exitFindings;
}

void run(const tArguments& arguments, tContext& context) {
    if (arguments.markdown) {
        context.out << codesAsMarkdown();
        return;
    }
    if (arguments.subject.empty()) throw CLI::RequiredError("CODE or NAME");
    if (arguments.plugin) return explainPlugin(arguments, context);
    if (const auto code = parseCode(arguments.subject)) {
        const tCodeExplanation explanation = explainCode(*code);
        context.out << (arguments.json ? toJson(explanation) : toText(explanation));
    } else if (isTooLarge(arguments.subject)) {
        throw CLI::ValidationError(
            fmt::format("'{}' is too large for a code, which has 32 bits (for a plug-in of this name, use --plugin)",
                        nPlainText::shortened(arguments.subject, longestNumber)));
    } else if (const tRule* const rule = nRules::find(nSimilarNames::withoutCase(arguments.subject))) {
        context.out << (arguments.json ? toJson(*rule) : toText(*rule));
    } else {
        explainPlugin(arguments, context);
    }
}

}  // namespace

void addCommand(CLI::App& program, tContext& context) {
    CLI::App* const command =
        program.add_subcommand("explain", "Say what a code or a finding means, or why a plug-in did not start");
    const auto arguments = std::make_shared<tArguments>();
    command
        ->add_option("NAME", arguments->subject,
                     "A code, such as -52006 or 0xC0000005; the id of a finding, such as blank-line; or the name of "
                     "a plug-in")
        ->type_name("");
    command->add_flag("--plugin", arguments->plugin, "NAME is a plug-in, even if it looks like a code or a finding");
    command->add_option("--status", arguments->statusFile, "The status file; on Windows, otherwise this machine's")
        ->type_name("FILE");
    command
        ->add_option("--directory", arguments->request.places,
                     "The plug-in directory; on Windows, otherwise this machine's")
        ->type_name("DIR");
    nRequest::addMapOption(*command, arguments->request);
    command->add_flag("--json", arguments->json, "Print one JSON document");
    command->add_flag("--markdown", arguments->markdown, "Print the table of all codes in Markdown");
    command->footer(
        "Example: ziptra explain -52006\n"
        "Example: ziptra explain Transport --status zuZiptraRemoteService.status --directory plugins\n"
        "Exit code: 0 if there is an explanation, 1 if nothing is known about the name, 2 if the command could not "
        "look.");
    command->callback([arguments, &context] { run(*arguments, context); });
}

}  // namespace nExplain
