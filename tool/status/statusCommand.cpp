#include "tool/status/statusCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>
#include <string>

#include "tool/outputFile.h"
#include "tool/requestCommand.h"
#include "tool/status/statusHtml.h"
#include "tool/status/statusJson.h"
#include "tool/status/statusPrometheus.h"
#include "tool/status/statusSource.h"
#include "tool/status/statusSummary.h"
#include "tool/status/statusTable.h"
#include "tool/status/statusWatch.h"

namespace nStatus {
namespace {

struct tOptions {
    std::string file;
    std::string output;
    bool json = false;
    bool prometheus = false;
    bool html = false;
    bool watch = false;
    bool strict = false;
};

std::string render(const tReport& report, const tOptions& options, bool colour) {
    if (options.json) return toJson(report);
    if (options.prometheus) return toPrometheus(report);
    if (options.html) return toHtml(report);
    return toTable(report, colour && options.output.empty());
}

void deliver(const std::string& text, const tOptions& options, tContext& context) {
    if (options.output.empty()) {
        context.out << text;
    } else {
        nOutputFile::replace(options.output, text);
    }
}

/// Metrics say so if the file cannot be read: a monitored machine must not seem well because they are old.
tReport readForOutput(const std::string& file, const tOptions& options, tContext& context) {
    try {
        return readReport(file);
    } catch (const tCannotRead& failure) {
        if (options.prometheus) deliver(prometheusWithoutReport(), options, context);
        if (!options.file.empty()) throw;
        throw tCannotRead(failure.what() + std::string("; the service writes it when it starts, if its folder exists"));
    }
}

void run(const tOptions& options, tContext& context) {
    const std::string file = options.file.empty() ? hostsFile() : options.file;
    if (options.watch) return watch(context, file, processDisplay());
    const tReport report = readForOutput(file, options, context);
    deliver(render(report, options, context.colour), options, context);
    context.exitCode = hasFindings(report, options.strict) ? exitFindings : exitNothingFound;
}

void addForms(CLI::App& command, tOptions& options) {
    CLI::Option* const json = command.add_flag("--json", options.json, "Print JSON for scripts");
    CLI::Option* const prometheus =
        command.add_flag("--prometheus", options.prometheus, "Print metrics in Prometheus' text format");
    CLI::Option* const html = command.add_flag("--html", options.html, "Print a page for browsers");
    CLI::Option* const watch =
        command.add_flag("--watch", options.watch, "Show the table again whenever the file changes, until Ctrl+C");
    json->excludes(prometheus)->excludes(html)->excludes(watch);
    prometheus->excludes(html)->excludes(watch);
    html->excludes(watch);
    nRequest::addOutputOption(command, options.output)->excludes(watch);
}

}  // namespace

void addCommand(CLI::App& program, tContext& context) {
    const auto options = std::make_shared<tOptions>();
    CLI::App* const command = program.add_subcommand("status", "Show what the service did, from its status file");
    command->add_option("FILE", options->file, "The status file; on Windows, otherwise that of this machine")
        ->type_name("");
    addForms(*command, *options);
    command->add_flag("--strict", options->strict, "Let warnings count for the exit code, too");
    command->footer(
        "Example: ziptra status\n"
        "Example: ziptra status --html --output status.html\n"
        "Exit code: 0 if nothing failed, 1 if the file shows messages or failures, 2 if it cannot be read.");
    command->callback([options, &context] { run(*options, context); });
}

}  // namespace nStatus
