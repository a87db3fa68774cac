#include "tests/support/fakeClock.h"

#include "time/clock.h"

namespace support {
namespace {

tFakeClock* current = nullptr;

}  // namespace

tFakeClock::tFakeClock(std::uint32_t increment) : timeIncrement(increment) {
    current = this;
    nTime::gClockSettings = {};
}

tFakeClock::~tFakeClock() {
    current = nullptr;
    nTime::gClockSettings = {};
}

// See loader.cpp for the names.

std::uint64_t realTickCount() asm("__real__ZN5nTime8uptimeMsEv");
std::uint64_t wrappedTickCount() asm("__wrap__ZN5nTime8uptimeMsEv");
std::uint64_t wrappedTickCount() { return current == nullptr ? realTickCount() : current->read(); }

std::uint32_t realTimeIncrement() asm("__real__ZN5nTime18timeIncrement100nsEv");
std::uint32_t wrappedTimeIncrement() asm("__wrap__ZN5nTime18timeIncrement100nsEv");
std::uint32_t wrappedTimeIncrement() { return current == nullptr ? realTimeIncrement() : current->timeIncrement; }

std::uint64_t realCounterFrequency() asm("__real__ZN5nTime18counterFrequencyHzEv");
std::uint64_t wrappedCounterFrequency() asm("__wrap__ZN5nTime18counterFrequencyHzEv");
std::uint64_t wrappedCounterFrequency() {
    return current == nullptr ? realCounterFrequency() : current->counterFrequency;
}

}  // namespace support
