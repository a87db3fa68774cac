// Never shipped: lets the portable core run under native tools, where paths are UTF-8 already.
#include <filesystem>

#include "stdpath/path.h"

namespace nStdPath {

boost::filesystem::path pathFromUtf8(const std::string& text) { return text; }

std::string pathToUtf8(const boost::filesystem::path& path) { return path.native(); }

std::wstring widePathFromUtf8(const std::string& text) {
    // Through UTF-32, which does not depend on the locale.
    const std::u32string wide = std::filesystem::path(text).u32string();
    return {wide.begin(), wide.end()};
}

}  // namespace nStdPath
