// The service never ships with this: the terminal of systems other than Windows.
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "tool/console.h"

namespace nConsole {
namespace {

int descriptor(tStandardStream stream) noexcept {
    return stream == tStandardStream::output ? STDOUT_FILENO : STDERR_FILENO;
}

}  // namespace

bool isTerminal(tStandardStream stream) noexcept { return isatty(descriptor(stream)) == 1; }

bool enableColours(tStandardStream /*stream*/) noexcept {
    const char* const terminal = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): nothing sets it here
    return terminal != nullptr && std::string_view(terminal) != "dumb";
}

bool write(tStandardStream stream, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor(stream), text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace nConsole
