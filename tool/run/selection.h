#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "source/nPluginData.h"

/// Runs whole lives of plug-ins in a process of their own, and says what becomes of them.
namespace nRun {

struct tPlugin {
    std::string file;  ///< of its description, as given or listed
    tPluginDescription description;
};

/// The plug-ins cannot be run. Its text is one sentence for people.
struct tCannotRun : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Returns the plug-ins that these files (UTF-8 paths) describe, and those on which they depend if a description in the
/// same directory has that name, in the order in which the host starts them. Throws tCannotRun if the host cannot read
/// one of the files.
[[nodiscard]] std::vector<tPlugin> select(const std::vector<std::string>& files);

}  // namespace nRun
