// The service never ships with this: the replacement of files on systems other than Windows.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>

#include "tool/fileDescriptor.h"
#include "tool/interruption.h"
#include "tool/outputFilePlatform.h"
#include "tool/systemReason.h"

namespace nOutputFile {
namespace {

/// Writes to what is there already and is no file.
std::string writeDirectly(const std::string& path, std::string_view content) {
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (file < 0) return nSystemReason::last();
    const bool written = writeAll(file, content);
    std::string reason = written ? std::string() : nSystemReason::last();
    close(file);
    return reason;
}

/// Returns the rights of a new file, as the process's mask leaves them.
mode_t usualRights() noexcept {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666U & ~mask;
}

/// Writes the whole content, so that it is on the disk when the name is changed.
bool fill(int file, mode_t rights, std::string_view content) noexcept {
    const bool filled = writeAll(file, content) && fchmod(file, rights) == 0 && fsync(file) == 0;
    const int error = errno;
    const bool closed = close(file) == 0;
    if (!filled) errno = error;
    return filled && closed;
}

/// Returns what precedes the file's name.
std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

std::string replaceUninterrupted(const std::string& path, mode_t rights, std::string_view content) {
    std::string temporary = folderOf(path) + ".ziptra.XXXXXX";  // the file's own name can be as long as names may be
    const int file = mkstemp(temporary.data());
    if (file < 0) return nSystemReason::last();
    if (fill(file, rights, content) && rename(temporary.c_str(), path.c_str()) == 0) return {};
    std::string reason = nSystemReason::last();
    unlink(temporary.c_str());
    return reason;
}

std::string replaceFile(const std::string& path, mode_t rights, std::string_view content) {
    std::string reason;
    nInterruption::withhold([&] { reason = replaceUninterrupted(path, rights, content); });
    return reason;
}

bool isSame(const struct stat& a, const struct stat& b) noexcept {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// Returns whether the file is what this standard stream writes to, as in "--output /dev/stdout >> log".
bool isStream(const struct stat& status, int stream) noexcept {
    struct stat other {};
    return fstat(stream, &other) == 0 && isSame(status, other);
}

/// Returns the path of the file to which a link leads, even if it does not exist yet, or the path itself.
std::string targetOf(std::string path) {
    constexpr int mostLinks = 40;  // as for the system
    for (int i = 0; i < mostLinks; ++i) {
        std::array<char, PATH_MAX> link{};
        const ssize_t size = readlink(path.c_str(), link.data(), link.size());
        if (size < 0) break;
        const std::string target(link.data(), static_cast<std::size_t>(size));
        path = target.starts_with('/') ? target : folderOf(path).append(target);
    }
    return path;
}

}  // namespace

std::string tryToReplace(const std::string& path, std::string_view content) {
    struct stat status {};
    const bool exists = stat(path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) return nSystemReason::last();
    if (!exists) return replaceFile(targetOf(path), usualRights(), content);
    if (!S_ISREG(status.st_mode)) return writeDirectly(path, content);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        if (isStream(status, stream)) return writeAll(stream, content) ? std::string() : nSystemReason::last();
    }
    const std::string target = targetOf(path);
    struct stat named {};
    // A link below /proc may lead to an open file that has no name.
    if (stat(target.c_str(), &named) != 0 || !isSame(status, named)) return writeDirectly(path, content);
    return replaceFile(target, status.st_mode & 07777U, content);
}

}  // namespace nOutputFile
