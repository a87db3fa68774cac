#include "stdpath/path.h"
#include "stdpath/utf.h"

namespace nStdPath {

boost::filesystem::path pathFromUtf8(const std::string& text) { return widePathFromUtf8(text); }

std::string pathToUtf8(const boost::filesystem::path& path) {
    const std::wstring& name = path.native();
    return fileNameToUtf8(std::u16string(name.begin(), name.end()));
}

std::wstring widePathFromUtf8(const std::string& text) {
    const std::u16string name = fileNameFromUtf8(text);
    return {name.begin(), name.end()};
}

}  // namespace nStdPath
