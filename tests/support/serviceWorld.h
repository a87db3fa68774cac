#pragma once

#include <filesystem>
#include <string>

#include "source/tService.h"
#include "tests/support/deployment.h"
#include "tests/support/stdpath.h"

namespace support {

/// A machine for the service to run on: its own shared directory with an empty plug-in directory, its own folder for
/// the status file, and no framework library. Stops a service that is still started on destruction. At most one may
/// exist at a time.
class tServiceWorld {
public:
    tServiceWorld();
    ~tServiceWorld();
    tServiceWorld(const tServiceWorld&) = delete;
    tServiceWorld& operator=(const tServiceWorld&) = delete;

    /// Writes a description file and returns its path in the service's form.
    std::string describe(const std::string& fileName, const std::string& text) const;
    /// A description whose library is tests/plugins/calling, with the entries Begin, Halt and End.
    [[nodiscard]] static std::string calling(const std::string& name, const std::string& moreKeys = "");

    /// Returns the text of the status file after its first two lines, which are checked here, or "no status file".
    /// Lines end with LF, and every duration is shown as "T ms".
    [[nodiscard]] std::string status() const;
    void removeStatus() const;

    tSharedPlaces places;
    tDeploymentPlatform deployment;
    std::filesystem::path plugins;       ///< the plug-in directory
    std::filesystem::path statusFolder;  ///< where the status file is

private:
    std::filesystem::path root_;
};

}  // namespace support
