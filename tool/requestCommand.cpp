#include "tool/requestCommand.h"

#include <CLI/CLI.hpp>
#include <boost/filesystem/operations.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "stdpath/path.h"
#include "tool/check/mask.h"
#include "tool/progress.h"

namespace nRequest {
namespace {

std::string checkMap(const std::string& text) {
    const std::size_t separator = text.find('=');
    const bool valid = separator != std::string::npos && separator > 0 && separator + 1 < text.size();
    if (!valid) return "'" + text + "' is no mapping: write a Windows folder, '=' and a directory";
    const std::string directory = text.substr(separator + 1);
    boost::system::error_code error;
    const bool exists = boost::filesystem::is_directory(nStdPath::pathFromUtf8(directory), error);
    return exists ? "" : "There is no directory '" + directory + "'";
}

std::string checkMask(const std::string& text) {
    return nMask::read(text) ? "" : "'" + text + "' is no mask: write a number, such as 1 or 0xFFFFFFFD";
}

}  // namespace

void addMapOption(CLI::App& command, nCheck::tRequest& request) {
    const auto setMaps = [&request](const std::vector<std::string>& maps) {
        for (const std::string& map : maps) {
            const std::size_t separator = map.find('=');
            request.folderMap.emplace_back(map.substr(0, separator), map.substr(separator + 1));
        }
    };
    command
        .add_option_function<std::vector<std::string>>(
            "--map", setMaps, "Where a folder of the machine that runs the host is; may be repeated")
        ->check(checkMap)
        ->type_name(R"("C:\FOLDER=DIRECTORY")");
}

void addAllowedOption(CLI::App& command, nCheck::tRequest& request) {
    const auto setMask = [&request](const std::string& mask) { request.allowedMask = nMask::read(mask); };
    command
        .add_option_function<std::string>(
            "--allowed", setMask, "The features that the machine allows, such as 0xFFFFFFFD: all but deployment")
        ->check(checkMask)
        ->type_name("MASK");
}

CLI::Option* addOutputOption(CLI::App& command, std::string& file) {
    const auto checkName = [](const std::string& name) { return std::string(name.empty() ? "The name is empty" : ""); };
    return command
        .add_option("--output", file, "Replace this file with the result, as a whole, instead of printing it")
        ->check(checkName)
        ->type_name("FILE");
}

nCheck::tPrediction predict(nCheck::tRequest request, tContext& context) {
    std::optional<tProgress> progress;
    request.onPlugin = [&](std::size_t total) {
        if (!progress) progress.emplace(context, "checking plug-ins", total);
        progress->advance();
    };
    return nCheck::predict(request);
}

}  // namespace nRequest
