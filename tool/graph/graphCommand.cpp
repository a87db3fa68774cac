#include "tool/graph/graphCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "tool/check/prediction.h"
#include "tool/graph/graphText.h"
#include "tool/outputFile.h"
#include "tool/plainText.h"
#include "tool/requestCommand.h"

namespace nGraph {
namespace {

struct tArguments {
    nCheck::tRequest request;
    std::string output;
    bool dot = false;  ///< the default anyway
    bool mermaid = false;
    bool svg = false;
    bool json = false;
};

std::string render(const tArguments& arguments, const nCheck::tPrediction& prediction) {
    const tGraph graph = fromPrediction(prediction);
    if (arguments.json) return toJson(graph, prediction.directory);
    if (arguments.svg) return toSvg(graph, prediction.directory);
    return arguments.mermaid ? toMermaid(graph) : toDot(graph);
}

/// Reports the descriptions that the host rejects, and the files that it does not see.
void reportWhatIsNotDrawn(const nCheck::tPrediction& prediction, tContext& context) {
    for (const std::string& message : prediction.messages) {
        context.error << "ziptra: The host will report: " << nPlainText::printable(message) << '\n';
    }
    for (const tFinding& finding : prediction.findings) {
        if (finding.id != "unseen-file" && finding.id != "unseen-folder") continue;
        context.error << "ziptra: Not drawn: " << nPlainText::printable(finding.file) << ": " << finding.message
                      << '\n';
    }
}

void run(const tArguments& arguments, tContext& context) {
    const nCheck::tPrediction prediction = nRequest::predict(arguments.request, context);
    const std::string text = render(arguments, prediction);
    if (arguments.output.empty()) {
        context.out << text;
    } else {
        nOutputFile::replace(arguments.output, text);
    }
    reportWhatIsNotDrawn(prediction, context);
}

void addFormats(CLI::App& command, tArguments& arguments) {
    CLI::Option* const dot = command.add_flag("--dot", arguments.dot, "Print text for Graphviz; this is the default");
    CLI::Option* const mermaid = command.add_flag("--mermaid", arguments.mermaid, "Print a flowchart for Mermaid");
    CLI::Option* const svg = command.add_flag("--svg", arguments.svg, "Print a picture");
    CLI::Option* const json = command.add_flag("--json", arguments.json, "Print one JSON document");
    dot->excludes(mermaid)->excludes(svg)->excludes(json);
    mermaid->excludes(svg)->excludes(json);
    svg->excludes(json);
}

}  // namespace

void addCommand(CLI::App& program, tContext& context) {
    CLI::App* const command = program.add_subcommand("graph", "Draw the plug-ins' dependencies and start order");
    const auto arguments = std::make_shared<tArguments>();
    command
        ->add_option("PLACE", arguments->request.places,
                     "Directories and description files; on Windows, otherwise this machine's plug-in directory")
        ->type_name("");
    addFormats(*command, *arguments);
    nRequest::addOutputOption(*command, arguments->output);
    nRequest::addAllowedOption(*command, arguments->request);
    nRequest::addMapOption(*command, arguments->request);
    command->footer(
        "Example: ziptra graph plugins --svg --output plugins.svg\n"
        "Exit code: 0 if the graph was drawn, 2 if not.");
    command->callback([arguments, &context] { run(*arguments, context); });
}

}  // namespace nGraph
