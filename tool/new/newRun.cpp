#include "tool/new/newRun.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>
#include <vector>

#include "stdpath/path.h"
#include "tool/findingJson.h"
#include "tool/format.h"
#include "tool/interruption.h"
#include "tool/new/newName.h"
#include "tool/new/newProject.h"
#include "tool/new/newSteps.h"

namespace nNew {
namespace {

struct tProject {
    std::string folder;
    std::vector<tFile> files;
};

std::string inside(const std::string& folder, const std::string& name) {
    return nStdPath::pathToUtf8(nStdPath::pathFromUtf8(folder) / nStdPath::pathFromUtf8(name));
}

/// Removes the folder and the first of its files. Returns what to add to the reason for it.
std::string removed(const tProject& project, std::size_t created, const tSystem& system) {
    bool all = true;
    for (std::size_t i = 0; i < created; ++i) all &= system.remove(inside(project.folder, project.files[i].name));
    all &= system.remove(project.folder);
    return all ? "" : fmt::format("; '{}' could not be removed", project.folder);
}

/// Returns an empty text, or one sentence about why there is no project.
std::string create(const tProject& project, const tSystem& system) {
    const std::string reason = system.createFolder(project.folder);
    if (!reason.empty()) {
        if (!system.exists(project.folder)) return fmt::format("Cannot create '{}': {}", project.folder, reason);
        return fmt::format("'{}' exists already; choose another name or --directory", project.folder);
    }
    for (std::size_t i = 0; i < project.files.size(); ++i) {
        const std::string path = inside(project.folder, project.files[i].name);
        const std::string failure = system.createFile(path, project.files[i].content);
        if (failure.empty()) continue;
        return fmt::format("Cannot create '{}': {}{}", path, failure, removed(project, i, system));
    }
    return {};
}

std::string toText(const tProject& project, const std::string& sdk, const std::vector<std::string>& steps) {
    std::string text = fmt::format("Created in {}:\n", project.folder);
    for (const tFile& file : project.files) text += fmt::format("  {}\n", file.name);
    text += "\nNext, configure, build, test and run it:\n";
    for (const std::string& step : steps) text += fmt::format("  {}\n", step);
    if (sdk.empty()) {
        text += "\nThis program is not in the folder bin of an SDK: CMake needs one whose folder bin is in PATH.\n";
    }
    return text;
}

std::string toJson(const tRequest& request, const tProject& project, const std::vector<std::string>& steps) {
    nlohmann::ordered_json document;
    document["schema"] = 1;
    document["name"] = request.name;
    document["language"] = request.language;
    document["folder"] = project.folder;
    for (const tFile& file : project.files) document["files"].push_back(file.name);
    document["next"] = steps;
    return nJson::toText(document);
}

}  // namespace

void run(const tRequest& request, bool json, const tSystem& system, tContext& context) {
    std::string problem = problemWith(request.name);
    if (!problem.empty()) throw std::runtime_error(problem);
    const tProject project{inside(request.directory, request.name), filesOf(request.name, request.language)};
    nInterruption::withhold([&] { problem = create(project, system); });
    if (!problem.empty()) throw std::runtime_error(problem);
    const std::string sdk = sdkOf(system);
    const std::vector<std::string> steps = nextSteps(request.name, project.folder, sdk, system.isWindows);
    context.out << (json ? toJson(request, project, steps) : toText(project, sdk, steps));
}

}  // namespace nNew
