#include "tests/support/plugins.h"

#include <filesystem>
#include <fstream>

namespace support {
namespace {

constexpr const char* logVariable = "TEST_PLUGIN_LOG";

}  // namespace

std::string pluginPath(const std::string& name) {
    return (std::filesystem::path(testProgramFolder()) / "test-plugins" / (name + libraryExtension)).string();
}

tPluginDescription pluginDescription(const std::string& library, const std::string& initialize, const std::string& stop,
                                     const std::string& cleanup) {
    tPluginDescription description;
    description.path = pluginPath(library);
    description.initialize = initialize;
    description.stop = stop;
    description.cleanup = cleanup;
    return description;
}

tPluginLog::tPluginLog() : path_((std::filesystem::path(testProgramFolder()) / "plugin-calls.log").string()) {
    std::filesystem::remove(path_);
    setEnvironment(logVariable, path_.c_str());
}

tPluginLog::~tPluginLog() {
    setEnvironment(logVariable, "");
    std::filesystem::remove(path_);
}

std::vector<std::string> tPluginLog::lines() const {
    std::vector<std::string> lines;
    std::ifstream file(path_);
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

}  // namespace support
