#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "source/nPluginData.h"

/// The libraries that tests/plugins/ builds, for real loading.
namespace support {

/// Returns the full path (UTF-8) of one of them.
std::string pluginPath(const std::string& name);

/// Returns a description of one of them with these entries.
tPluginDescription pluginDescription(const std::string& library, const std::string& initialize,
                                     const std::string& stop = "", const std::string& cleanup = "");

/// The reports of the test plug-ins while this object exists (see plugins/behaviours/behaviours.cpp).
class tPluginLog {
public:
    tPluginLog();
    ~tPluginLog();
    tPluginLog(const tPluginLog&) = delete;
    tPluginLog& operator=(const tPluginLog&) = delete;

    [[nodiscard]] std::vector<std::string> lines() const;

private:
    std::string path_;
};

/// Platform differences: how the environment is set and the test program is found.
void setEnvironment(const char* name, const char* value);
std::string testProgramFolder();
extern const char* const libraryExtension;
/// How many files a test creates in one folder: fewer on Windows, because Wine reads all of them before it creates
/// another.
extern const std::size_t manyFiles;

}  // namespace support
