#pragma once

/// A manual-reset event, unnamed and with default security. Once it is set, no wait blocks any more.
class tEvent {
public:
    /// Creates the event unsignalled. Throws zuerr::Exception (-52008) if the system cannot create it, except while
    /// another exception is propagating: then set does nothing and wait does not block.
    tEvent();
    ~tEvent() noexcept(false);
    tEvent(const tEvent&) = delete;
    tEvent& operator=(const tEvent&) = delete;

    /// Thread: any.
    void set();
    /// Blocks, without a time-out, until the event is set.
    void wait();

private:
    void* handle_;  ///< the system's handle; owned, or null
};
