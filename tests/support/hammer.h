#pragma once

#include <chrono>
#include <thread>

namespace support {

/// Passes a little time without asking the system.
inline void spin(unsigned turns) {
    for (volatile unsigned left = turns; left > 0;) left = left - 1;
}

/// What lies between two of the requests that a thread sends without end: the lock must be free at times, or the
/// service main never gets it. When that takes very long the machine is busy, and the service main waits for its turn.
inline void pauseAfterRequest(int number) {
    if (number < 10'000) {
        spin(1'000);
    } else {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace support
