// The service never ships with this: the delay of signals on systems other than Windows.
#include <csignal>

#include "tool/interruption.h"

namespace nInterruption {
namespace {

/// While it exists, signals that would end the process wait.
class tSignalsWait {
public:
    tSignalsWait() noexcept {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) sigaddset(&signals, signal);
        pthread_sigmask(SIG_BLOCK, &signals, &before_);
    }
    ~tSignalsWait() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    tSignalsWait(const tSignalsWait&) = delete;
    tSignalsWait& operator=(const tSignalsWait&) = delete;

private:
    sigset_t before_{};
};

}  // namespace

void withhold(const std::function<void()>& action) {
    const tSignalsWait signalsWait;
    action();
}

}  // namespace nInterruption
