#pragma once

#include <chrono>
#include <cstddef>

/// What a display that is redrawn asks of the terminal and of its user.
namespace nTerminal {

/// Returns the height of the terminal of standard output, or 24 if the system does not say.
[[nodiscard]] std::size_t rows() noexcept;

/// While it exists, Ctrl+C does not end the process. At most one may exist at a time.
class tInterrupt {
public:
    tInterrupt();
    ~tInterrupt();
    tInterrupt(const tInterrupt&) = delete;
    tInterrupt& operator=(const tInterrupt&) = delete;

    /// Waits for Ctrl+C, or another request to end, but no longer than this. Returns whether it has come.
    /// Thread: the one that constructed this object.
    [[nodiscard]] bool wait(std::chrono::milliseconds limit);
};

}  // namespace nTerminal
