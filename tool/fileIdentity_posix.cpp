// The service never ships with this: the identity of files on systems other than Windows.
#include <sys/stat.h>

#include "tool/fileIdentity.h"

namespace nFileIdentity {

std::string of(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return {};
    return std::to_string(status.st_dev) + ':' + std::to_string(status.st_ino);
}

}  // namespace nFileIdentity
