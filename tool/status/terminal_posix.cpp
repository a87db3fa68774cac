// The service never ships with this: the terminal of systems other than Windows.
#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>
#include <ctime>

#include "tool/status/terminal.h"

namespace nTerminal {
namespace {

sigset_t endingSignals() noexcept {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
    return signals;
}

}  // namespace

std::size_t rows() noexcept {
    constexpr std::size_t usual = 24;
    winsize size{};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row != 0;
    return known ? size.ws_row : usual;
}

tInterrupt::tInterrupt() {
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

tInterrupt::~tInterrupt() {
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): it needs what the constructor has set up
bool tInterrupt::wait(std::chrono::milliseconds limit) {
    const sigset_t signals = endingSignals();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(limit);
    const timespec time{seconds.count(), std::chrono::nanoseconds(limit - seconds).count()};
    return sigtimedwait(&signals, nullptr, &time) > 0;
}

}  // namespace nTerminal
