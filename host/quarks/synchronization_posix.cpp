// Never shipped: lets the portable core run under native tools. An atomic flag replaces the event.
#include <atomic>

#include "quarks/synchronization.h"

namespace {

std::atomic_flag& flagOf(void* handle) noexcept { return *static_cast<std::atomic_flag*>(handle); }

}  // namespace

tEvent::tEvent() : handle_(new std::atomic_flag) {}

tEvent::~tEvent() noexcept(false) {
    delete &flagOf(handle_);
    handle_ = nullptr;
}

void tEvent::set() {
    flagOf(handle_).test_and_set();
    flagOf(handle_).notify_all();
}

void tEvent::wait() { flagOf(handle_).wait(false); }
