#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace catalogues {

/// An entry of a plug-in directory. Its name is UTF-8.
struct tEntry {
    enum class tKind {
        file,
        folder,
        locked,  ///< a file that another process has opened and shares with nobody
    };

    std::string name;
    std::string bytes;
    tKind kind = tKind::file;
};

/// What the host's query of the deployment setting comes to.
enum class tDeployment { allowed, forbidden, notFound, noFramework };

/// A plug-in directory, and how the host is to be started with it.
struct tCatalogue {
    std::uint64_t seed = 0;
    bool asService = false;
    bool givesDirectory = false;  ///< whether the tool is told the directory, instead of finding it as the host does
    bool givesAllowed = false;    ///< whether it is told what is allowed, instead of querying it as the host does
    tDeployment deployment = tDeployment::allowed;
    std::vector<tEntry> entries;
};

/// Returns everything that is needed to reproduce the directory by hand. Bytes that cannot be printed are escaped, long
/// files are cut.
[[nodiscard]] std::string describe(const tCatalogue& catalogue);

/// Returns the text with everything but printable ASCII and line feeds escaped, cut to a length that people read.
[[nodiscard]] std::string printable(const std::string& bytes);

}  // namespace catalogues
