#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

#include "tool/context.h"

/// Shows how far a command has come, in one line on the error stream that is erased at the end. It appears only if
/// someone watches, and only once the work has taken longer than a second.
class tProgress {
public:
    /// Monotonic time.
    using tClock = std::function<std::chrono::milliseconds()>;

    /// `what` is, for example, "reading libraries"; 0 as the total means that it is unknown. The context must outlive
    /// this object.
    tProgress(tContext& context, std::string what, std::size_t total);
    tProgress(tContext& context, std::string what, std::size_t total, tClock clock);
    ~tProgress();
    tProgress(const tProgress&) = delete;
    tProgress& operator=(const tProgress&) = delete;

    /// Call after each of the steps.
    void advance();

private:
    void show();

    tContext& context_;
    std::string what_;
    std::size_t total_;
    std::size_t done_ = 0;
    tClock clock_;
    std::chrono::milliseconds next_;  ///< when the line is written again
    bool shown_ = false;
};
