// The service never ships with this: reading files on systems other than Windows.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "tool/status/statusSource.h"
#include "tool/systemReason.h"

namespace nStatus {
namespace nPlatform {
namespace {

tAttempt failure() {
    const int error = errno;
    return {error == ENOENT ? tOutcome::tryAgain : tOutcome::failed,
            nSystemReason::of(static_cast<std::uint32_t>(error))};
}

tAttempt tooLarge() { return {tOutcome::failed, "it is larger than 1 GiB"}; }

/// Reads to the end, whatever the file's size was at first.
tAttempt readAll(int file, std::size_t expectedSize) {
    std::string content(expectedSize + 1, 0);
    std::size_t size = 0;
    for (;;) {
        const ssize_t count = ::read(file, content.data() + size, content.size() - size);
        if (count < 0) return failure();
        if (count == 0) break;
        size += static_cast<std::size_t>(count);
        if (size > largestSize) return tooLarge();
        if (size == content.size()) content.resize(2 * size);
    }
    content.resize(size);
    return {tOutcome::read, std::move(content)};
}

}  // namespace

tAttempt tryToRead(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return failure();
    struct stat status {};
    constexpr std::size_t usualSize = 4096;  // of what has no size, such as a pipe
    const bool sized = fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    const std::size_t size = sized ? static_cast<std::size_t>(status.st_size) : usualSize;
    tAttempt attempt = size > largestSize ? tooLarge() : readAll(file, size);
    close(file);
    return attempt;
}

}  // namespace nPlatform

std::string hostsFile() { throw tCannotRead("This system has no folder for the status file: name the file"); }

}  // namespace nStatus
