#pragma once

#include <cstddef>

/// Lets memory run out in a test. The linker sends every malloc and realloc of the product through here, and on Windows
/// those of the test's own `new` as well: expectations belong behind the action, not into it.
namespace allocations {

/// From now on requests for at least `bytes` are refused and counted.
void startRefusing(std::size_t bytes) noexcept;
/// Returns how many were.
int stopRefusing() noexcept;

/// Does something while requests for at least `bytes` are refused. Returns how many were.
template <class Action>
int refused(std::size_t bytes, Action action) {
    struct Stop {
        ~Stop() { stopRefusing(); }
    };
    const Stop stop;
    startRefusing(bytes);
    action();
    return stopRefusing();
}

}  // namespace allocations
