#pragma once

#include <cstdint>

/// While an object exists, loading a damaged library on its thread fails at once instead of displaying a message box,
/// which no user of a service could close. Read the error of a failed load before destroying the object. Thread: create
/// and destroy an object on the same thread.
class tErrorMode {
public:
    tErrorMode() noexcept;
    ~tErrorMode();
    tErrorMode(const tErrorMode&) = delete;
    tErrorMode& operator=(const tErrorMode&) = delete;

private:
    std::uint32_t previous_ = 0;
};
