// Never shipped: lets the portable core run under native tools. Backslashes separate folders here too.
#include <unistd.h>

#include <algorithm>
#include <ctime>

#include "source/statusFile.h"

namespace nStatusFile {
namespace {

std::string nativePath(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

}  // namespace

std::FILE* open(const std::string& path) { return std::fopen(nativePath(path).c_str(), "w"); }

bool remove(const std::string& path) { return std::remove(nativePath(path).c_str()) == 0; }

bool rename(const std::string& from, const std::string& to) {
    // Unlike the Windows call, rename() would replace an existing file.
    return link(nativePath(from).c_str(), nativePath(to).c_str()) == 0 && unlink(nativePath(from).c_str()) == 0;
}

std::string currentTimeText() {
    const std::time_t now = std::time(nullptr);
    const char* const text = std::ctime(&now);  // NOLINT(concurrency-mt-unsafe): called on one thread
    return text == nullptr ? "\n" : text;
}

}  // namespace nStatusFile
