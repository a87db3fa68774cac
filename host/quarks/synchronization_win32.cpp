#include <windows.h>

#include "err/Exception.h"
#include "quarks/synchronization.h"

namespace {

constexpr zuerr::RaiseSite createFailed{"zukest/quarks/synchronization", 1598};

}  // namespace

tEvent::tEvent() : handle_(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {
    if (handle_ != nullptr) return;
    zuerr::PlatformStatus status;
    zuerr::RaiseInto(status, zuerr::osFault.code, zuerr::hostComponent, createFailed);
    zuerr::ThrowIfFailed(status);
}

tEvent::~tEvent() noexcept(false) {
    if (handle_ != nullptr) CloseHandle(handle_);
    handle_ = nullptr;
}

// Both calls fail at once for a null handle.
void tEvent::set() { SetEvent(handle_); }

void tEvent::wait() { WaitForSingleObject(handle_, INFINITE); }
