// The service never ships with this: the files of a new project on systems other than Windows.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>

#include "tool/fileDescriptor.h"
#include "tool/new/newSystem.h"
#include "tool/systemReason.h"

namespace nNew {
namespace {

std::string createFolder(const std::string& folder) {
    return mkdir(folder.c_str(), 0777) == 0 ? "" : nSystemReason::last();
}

std::string createFile(const std::string& path, std::string_view content) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) return nSystemReason::last();
    std::string reason = writeAll(file, content) ? "" : nSystemReason::last();
    if (close(file) != 0 && reason.empty()) reason = nSystemReason::last();
    if (!reason.empty()) unlink(path.c_str());
    return reason;
}

/// A link counts as it is, wherever it leads.
bool exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

std::string programFolder() {
    std::array<char, PATH_MAX> path{};
    const ssize_t size = readlink("/proc/self/exe", path.data(), path.size());
    const std::string_view program(path.data(), size < 0 ? 0 : static_cast<std::size_t>(size));
    return std::string(program.substr(0, program.rfind('/')));
}

}  // namespace

tSystem thisSystem() {
    const auto remove = [](const std::string& path) { return std::remove(path.c_str()) == 0; };
    return {createFolder, createFile, remove, exists, programFolder(), false};
}

}  // namespace nNew
