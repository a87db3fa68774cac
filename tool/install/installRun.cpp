#include "tool/install/installRun.h"

#include <nlohmann/json.hpp>
#include <ostream>

#include "tool/findingJson.h"
#include "tool/format.h"

namespace nInstall {
namespace {

std::string commandName(tKind kind) {
    if (kind == tKind::install) return "install";
    return kind == tKind::repair ? "repair" : "uninstall";
}

/// What has been done, and why the rest has not.
struct tResult {
    std::vector<std::string> steps;
    std::string error;
};

template <class Report>
tResult performAll(const std::vector<tStep>& steps, const tSystem& system, Report report) {
    tResult result;
    const auto add = [&](std::string line) {
        report(line);
        result.steps.push_back(std::move(line));
    };
    for (const tStep& step : steps) {
        const std::uint32_t error = system.perform(step);
        if (error == 0) {
            add(done(step));
        } else if (isOptional(step, error)) {
            const bool stays = step.action == tAction::deleteFolder;
            add(notDone(step) +
                (stays ? ", and stays: " + system.reason(error) : ", because this system has no such setting"));
        } else {
            result.error = fmt::format("{}: {}", notDone(step), system.reason(error));
            break;
        }
    }
    return result;
}

void printJson(const tResult& result, std::ostream& out) {
    nlohmann::ordered_json document;
    document["schema"] = 1;
    document["steps"] = result.steps;
    document["error"] = result.error.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(result.error);
    out << nJson::toText(document);
}

}  // namespace

void run(const tRequest& request, tOutput output, const tSystem& system, tContext& context) {
    const std::vector<tStep> steps = plan(request, system.lookAt());
    if (output == tOutput::commandLines) {
        for (const tStep& step : steps) {
            for (const std::string& line : commandLines(step)) context.out << line << '\n';
        }
        return;
    }
    const bool text = output == tOutput::text;
    const tResult result = performAll(steps, system, [&](const std::string& line) {
        if (text) context.out << line << '\n' << std::flush;  // at once: the next step may take a while
    });
    if (!text) printJson(result, context.out);
    if (text && steps.empty()) context.out << "Nothing to do: everything is as requested\n";
    if (result.error.empty()) return;
    const std::string rest =
        result.steps.empty() ? "" : fmt::format("; run 'ziptra {}' again to continue", commandName(request.kind));
    context.error << fmt::format("ziptra: {}{}\n", result.error, rest);
    context.exitCode = exitCouldNotLook;
}

}  // namespace nInstall
