#include "tool/check/checkCommand.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tool/check/mask.h"
#include "tool/check/prediction.h"
#include "tool/check/render.h"
#include "tool/finding.h"
#include "tool/progress.h"

namespace nCheck {
namespace {

struct tOptions {
    tRequest request;
    std::string allowed;
    std::vector<std::string> maps;
    bool json = false;
    bool strict = false;
};

/// Returns what is wrong with the text, or nothing.
std::string checkMask(const std::string& text) {
    return nMask::read(text) ? "" : "'" + text + "' is no mask: write a number, such as 1 or 0xFFFFFFFD";
}

std::string checkMap(const std::string& text) {
    const std::size_t separator = text.find('=');
    const bool valid = separator != std::string::npos && separator > 0 && separator + 1 < text.size();
    return valid ? "" : "'" + text + "' is no mapping: write a Windows folder, '=' and a directory";
}

void run(const tOptions& options, tContext& context) {
    tRequest request = options.request;
    request.allowedMask = nMask::read(options.allowed);
    for (const std::string& map : options.maps) {
        const std::size_t separator = map.find('=');
        request.folderMap.emplace_back(map.substr(0, separator), map.substr(separator + 1));
    }
    std::optional<tProgress> progress;
    request.onPlugin = [&](std::size_t total) {
        if (!progress) progress.emplace(context, "checking plug-ins", total);
        progress->advance();
    };
    try {
        const tPrediction prediction = predict(request);
        progress.reset();
        context.out << (options.json ? toJson(prediction) : toText(prediction, context.colour));
        context.exitCode = nFinding::matter(prediction.findings, options.strict) ? exitFindings : exitNothingFound;
    } catch (const tCannotLook& failure) {
        progress.reset();
        context.error << "ziptra: " << failure.what() << '\n';
        context.exitCode = exitCouldNotLook;
    }
}

}  // namespace

void addCommand(CLI::App& program, tContext& context) {
    const auto options = std::make_shared<tOptions>();
    CLI::App* const command = program.add_subcommand(
        "check",
        "Predict what the host will do with plug-ins: in which order they start, and which of them fail and why");
    command->add_option("PLACE", options->request.places,
                        "Directories and description files; without any, this machine's plug-in directory");
    command->add_option("--allowed", options->allowed, "The features that the machine allows, decimal or hexadecimal")
        ->check(checkMask)
        ->type_name("MASK");
    command->add_option("--map", options->maps, "Where a folder of the host's machine is; may be repeated")
        ->check(checkMap)
        ->type_name("'C:\\FOLDER=DIRECTORY'");
    command->add_flag("--json", options->json, "Print one JSON document");
    command->add_flag("--strict", options->strict, "Let warnings count for the exit code, too");
    command->footer(
        "Example: ziptra check --map \"C:\\Program Files\\X=dist\" plugins\n"
        "Exit code: 0 if there is no error, 1 if there is, 2 if the command could not look.");
    command->callback([options, &context] { run(*options, context); });
}

}  // namespace nCheck
