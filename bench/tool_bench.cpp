// Group tool: commands of the companion tool, from their arguments to their text, against reading the same files.
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "bench/groups.h"
#include "bench/pairs.h"
#include "bench/toolStage.h"
#include "ini/file.h"
#include "tool/ziptra.h"

namespace {

using nBench::demand;
using tArguments = std::vector<std::string>;

/// What a command writes, and its exit code.
struct tResult {
    std::string text;
    int exitCode;
};

tResult runTool(const tArguments& arguments) {
    std::ostringstream out;
    std::ostringstream error;
    tContext context{out, error};
    const int exitCode = runZiptra(arguments, context);
    return {std::move(out).str() + error.str(), exitCode};
}

/// Runs the command and demands this exit code and this line in its text.
void demandResult(const tArguments& arguments, int exitCode, const std::string& line) {
    const tResult result = runTool(arguments);
    demand(result.exitCode == exitCode && result.text.find(line + "\n") != std::string::npos,
           "the result is not '" + line + "' but ends with '" +
               result.text.substr(result.text.size() - std::min<std::size_t>(result.text.size(), 200)) + "'");
}

/// Reads the files as a program does that does nothing else.
void readBarely(const std::vector<std::string>& files) {
    static std::array<char, 65536> bytes;  // filled with zeros once, not for each file
    for (const std::string& path : files) {
        const nIni::tFile file(std::fopen(path.c_str(), "rb"));
        demand(file != nullptr, path + " cannot be opened");
        while (std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size()) {
        }
    }
}

/// Reads the file into a text of its size.
void readWhole(const std::string& path) {
    std::string text(std::filesystem::file_size(path), 0);
    const nIni::tFile file(std::fopen(path.c_str(), "rb"));
    demand(file != nullptr && std::fread(text.data(), 1, text.size(), file.get()) == text.size(),
           path + " cannot be read");
}

void readLines(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string line;
    while (std::getline(file, line)) {
    }
    demand(file.eof() && !file.bad(), path + " cannot be read");
}

tArguments argumentsOf(const tStagedPlugins& plugins) {
    tArguments arguments{"check", plugins.directory};
    arguments.insert(arguments.end(), plugins.options.begin(), plugins.options.end());
    return arguments;
}

/// A library that was not examined, or another one in its place, would lack the entries that its description names.
void demandAllRight(const tStagedPlugins& plugins) {
    demandResult(argumentsOf(plugins), exitNothingFound,
                 std::to_string(plugins.files.size() / 2) +
                     " plug-ins, of which 0 will not start; 0 errors, 0 warnings, 0 notes");
}

nBench::tPair checkAgainstReading(int count) {
    const auto plugins = std::make_shared<tStagedPlugins>(stagePlugins(count));
    demandAllRight(*plugins);
    return {[arguments = argumentsOf(*plugins)] { runTool(arguments); }, [plugins] { readBarely(plugins->files); }};
}

nBench::tPair checkAgainstATenth(int count) {
    const tStagedPlugins many = stagePlugins(count);
    const tStagedPlugins few = stagePlugins(count / 10);
    demandAllRight(many);
    demandAllRight(few);
    return {[arguments = argumentsOf(many)] { runTool(arguments); },
            [arguments = argumentsOf(few)] { runTool(arguments); }};
}

nBench::tPair statusAgainst(void (*read)(const std::string& path), int count) {
    const std::string file = stageStatusFile(count);
    const tArguments arguments{"status", file};
    demandResult(arguments, exitFindings,
                 std::to_string(count) + " plug-ins: " + std::to_string(count / 100) + " failed");
    return {[arguments] { runTool(arguments); }, [file, read] { read(file); }};
}

}  // namespace

void addToolRows(const std::string& prefix) {
    const int few = nBench::quick() ? 100 : 1'000;
    nBench::addRow({"tool/" + prefix + "check", "", few, [few] { return checkAgainstReading(few); }});
    if (!prefix.empty()) return;
    const int many = 10 * few;
    nBench::addRow({"tool/check-ten-times", "", many, [many] { return checkAgainstATenth(many); }});
    nBench::addRow({"tool/status", "", many, [many] { return statusAgainst(readWhole, many); }});
    nBench::addRow({"tool/status-lines", "", many, [many] { return statusAgainst(readLines, many); }});
}
