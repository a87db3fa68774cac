#pragma once

/// A manual-reset event, unnamed and with default security: set once, it lets every wait through from then on.
class tEvent {
public:
    /// Not signalled. Throws zuerr::Exception (-52008) when the system has no event to give. While another exception is
    /// propagating nothing is thrown; the event is then of no use: setting it does nothing and no wait on it blocks.
    tEvent();
    ~tEvent();
    tEvent(const tEvent&) = delete;
    tEvent& operator=(const tEvent&) = delete;

    /// Any thread.
    void set() noexcept;
    /// Blocks, without a time-out, until the event is set.
    void wait() noexcept;

private:
    void* handle_;  ///< the system's; owned, null when there is none
};
