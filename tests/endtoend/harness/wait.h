#pragma once

#include <windows.h>

#include <chrono>
#include <stdexcept>
#include <string>

namespace endtoend {

/// Generous: a wait that reaches it means that the thing waited for never happens.
inline constexpr std::chrono::milliseconds patience{20000};

/// True as soon as the condition holds; false when the time is over and it still does not.
template <class Condition>
bool becomesTrue(Condition condition, std::chrono::milliseconds timeout = patience) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        Sleep(5);
    }
    return true;
}

/// Waits for what a test cannot go on without; its absence ends the test.
template <class Condition>
void waitFor(const std::string& what, Condition condition, std::chrono::milliseconds timeout = patience) {
    if (!becomesTrue(condition, timeout)) throw std::runtime_error("waited in vain for " + what);
}

}  // namespace endtoend
