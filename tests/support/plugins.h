#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// The libraries that tests/plugins/ builds, for real loading.
namespace support {

/// The full path (UTF-8) of one of them.
std::string pluginPath(const std::string& name);

/// What the test plug-ins report while this object lives (see plugins/behaviours/behaviours.cpp).
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

/// What the platform does differently: the environment is set, and the test program found, in different ways.
void setEnvironment(const char* name, const char* value);
std::string testProgramFolder();
extern const char* const libraryExtension;
/// So many files a test makes in one folder: on Windows fewer, as Wine looks at all of them before it makes one more.
extern const std::size_t manyFiles;

}  // namespace support
