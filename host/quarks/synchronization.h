#pragma once

/// A manual-reset event, unnamed and with default security: set once, it lets every wait through from then on.
class tEvent {
public:
    /// Not signalled. Throws zuerr::Exception (-52008) if the system has no event available. While another exception is
    /// propagating nothing is thrown; the event is then of no use: setting it does nothing and no wait on it blocks.
    tEvent();
    ~tEvent() noexcept(false);
    tEvent(const tEvent&) = delete;
    tEvent& operator=(const tEvent&) = delete;

    /// Thread: any.
    void set();
    /// Blocks, without a time-out, until the event is set.
    void wait();

private:
    void* handle_;  ///< the system's; owned, null if there is none
};
