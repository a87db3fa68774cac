#pragma once

#include <chrono>

namespace nSystemTime {

/// Measures, during its lifetime, the time that this thread spends in the program's system calls. It replaces their
/// entries in the executable's import table meanwhile. Its own overhead counts as the program's time.
/// Requires: only one exists at a time.
class tWatch {
public:
    tWatch();
    ~tWatch();
    tWatch(const tWatch&) = delete;
    tWatch& operator=(const tWatch&) = delete;

    /// Returns the time spent in system calls so far.
    [[nodiscard]] double seconds() const;

private:
    unsigned long long startTicks_;
    std::chrono::steady_clock::time_point start_;
};

}  // namespace nSystemTime
