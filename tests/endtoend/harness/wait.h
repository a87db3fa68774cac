#pragma once

#include <windows.h>

#include <chrono>
#include <stdexcept>
#include <string>

namespace endtoend {

/// A generous limit: a condition that does not hold by then never will.
inline constexpr std::chrono::milliseconds patience{20000};

/// Returns true as soon as the condition holds, or false if it does not hold before the timeout.
template <class Condition>
bool becomesTrue(Condition condition, std::chrono::milliseconds timeout = patience) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        Sleep(5);
    }
    return true;
}

/// Waits for a condition that the test needs. Throws std::runtime_error if it does not hold before the timeout.
template <class Condition>
void waitFor(const std::string& what, Condition condition, std::chrono::milliseconds timeout = patience) {
    if (!becomesTrue(condition, timeout)) throw std::runtime_error("timed out waiting for " + what);
}

}  // namespace endtoend
