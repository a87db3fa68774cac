#pragma once

/// Lets memory run out at a chosen moment: the test program's operator new fails on demand.
namespace failingNew {

enum class tHowLong { once, forEver };

/// From now on the `nth` allocation, counted from 1, throws std::bad_alloc, and all behind it if that is wanted.
void start(int nth, tHowLong howLong) noexcept;

/// Ends it; whether an allocation has failed.
bool stop() noexcept;

}  // namespace failingNew
