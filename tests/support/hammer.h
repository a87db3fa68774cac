#pragma once

#include <chrono>
#include <thread>

namespace support {

/// Passes a little time without a system call.
inline void spin(unsigned turns) {
    for (volatile unsigned left = turns; left > 0;) left = left - 1;
}

/// The pause between two requests of a thread that sends them continuously: the lock must sometimes be free, or
/// serviceMain never gets it. After a very long time the machine is probably busy, and serviceMain is waiting for its
/// turn.
inline void pauseAfterRequest(int number) {
    if (number < 10'000) {
        spin(1'000);
    } else {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace support
