#pragma once

#include <string>
#include <vector>

#include "tool/finding.h"

namespace nCheck {

/// The description files that the host sees.
struct tListing {
    std::string directory;              ///< the first of the places
    std::vector<std::string> files;     ///< in the order in which Windows lists them
    std::vector<std::string> messages;  ///< the host's, if it cannot open its directory
    std::vector<tFinding> findings;     ///< about files that the host does not see
};

/// Lists directories and single files, which are treated as if they were in one directory. Without places, it is the
/// plug-in directory of this machine. Throws tCannotLook.
[[nodiscard]] tListing listPlaces(const std::vector<std::string>& places);

}  // namespace nCheck
