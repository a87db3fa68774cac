// Calls the test program back from each entry point, so that a test can inspect the state at that moment.
//
// Initialize returns a warning and the other two throw, so that a status text shows their codes regardless of their
// times.

#include <cstdint>
#include <stdexcept>

namespace {

void (*callback)(const char* entry) = nullptr;

void call(const char* entry) {
    if (callback != nullptr) callback(entry);
}

}  // namespace

extern "C" {

void SetCallback(void (*newCallback)(const char* entry)) { callback = newCallback; }

std::int32_t Begin() {
    call("Begin");
    return 3;
}

void Halt() {
    call("Halt");
    throw std::runtime_error("Halt");
}

void End() {
    call("End");
    throw std::runtime_error("End");
}
}
