#pragma once

#include <cstdint>

/// While it exists, loading a damaged library on this thread fails at once instead of displaying a message box and
/// waiting for someone to close it, which a service has nobody for. Read the error of a failed load before it is
/// destroyed. Thread: create and destroy it on the same one.
class tErrorMode {
public:
    tErrorMode() noexcept;
    ~tErrorMode();
    tErrorMode(const tErrorMode&) = delete;
    tErrorMode& operator=(const tErrorMode&) = delete;

private:
    std::uint32_t previous_ = 0;
};
