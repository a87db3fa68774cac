#pragma once

#include <windows.h>

#include <chrono>
#include <stdexcept>
#include <string>

namespace endtoend {

/// Generous: what has not happened after this time never happens.
inline constexpr std::chrono::milliseconds patience{20000};

/// Returns true as soon as the condition holds, or false if it does not within the time.
template <class Condition>
bool becomesTrue(Condition condition, std::chrono::milliseconds timeout = patience) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        Sleep(5);
    }
    return true;
}

/// Waits for something that the test needs. Throws std::runtime_error if it does not happen.
template <class Condition>
void waitFor(const std::string& what, Condition condition, std::chrono::milliseconds timeout = patience) {
    if (!becomesTrue(condition, timeout)) throw std::runtime_error("waited in vain for " + what);
}

}  // namespace endtoend
