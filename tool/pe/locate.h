#pragma once

#include <optional>
#include <string>

#include "tool/pe/resolve.h"

namespace nPe {

/// Returns where the loader finds the library of this path, as the host passes it to LoadLibraryExA with
/// LOAD_WITH_ALTERED_SEARCH_PATH, or nullopt.
///
/// - Blanks at the end are ignored, and ".dll" is appended to a file name without a dot.
/// - A path that begins with a drive or a separator is not searched for. Its folder is the first one to be searched for
///   its imports; but if the path contains no backslash, only slashes, that is the host's folder.
/// - A name alone may be that of a library that is loaded already. Otherwise the host's folder is searched, then the
///   machine's search folders.
/// - Any other relative path is looked for below its own folder, seen from the current one, then below the machine's
///   search folders. (Microsoft calls the result of a relative path undefined; this is what Wine does.)
[[nodiscard]] std::optional<tLocation> locate(const std::string& path, const tMachine& machine);

}  // namespace nPe
