#pragma once

#include "err/PlatformStatus.h"

/// A manual-reset event, unnamed and with default security: set once, it lets every wait through from then on.
class tEvent {
public:
    /// Not signalled. Throws zuerr::Exception (-52008) when the system has no event to give, unless another exception
    /// is propagating already.
    tEvent();
    ~tEvent();
    tEvent(const tEvent&) = delete;
    tEvent& operator=(const tEvent&) = delete;

    /// Any thread.
    void set() noexcept;
    /// Blocks, without a time-out, until the event is set.
    void wait() noexcept;

private:
    void* handle_;  ///< the system's; owned
};
