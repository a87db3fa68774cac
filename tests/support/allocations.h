#pragma once

#include <atomic>
#include <cstddef>

/// Lets memory run out in a test. The linker sends every malloc, calloc, realloc and free of the test program through
/// here, and with them every `new`; on Windows those of the language's own libraries as well. One thread at a time.
/// Expectations belong after the action, not into it.
namespace allocations {

/// From now on requests for at least `bytes` are refused and counted.
void startRefusing(std::size_t bytes) noexcept;
/// Returns how many were.
int stopRefusing() noexcept;

/// Does something while requests for at least `bytes` are refused. Returns how many were.
template <class Action>
int refused(std::size_t bytes, Action action) {
    struct Stop {
        ~Stop() { stopRefusing(); }
    };
    const Stop stop;
    startRefusing(bytes);
    action();
    return stopRefusing();
}

enum class tHowLong { once, forEver };

/// From now on requests are counted, their blocks are remembered, and the `nth` request, counted from 1, is refused;
/// so are all later ones if `howLong` says so. 0: none.
void startFailing(int nth, tHowLong howLong) noexcept;

struct tCounts {
    int requests;
    int refused;
};

/// Ends it.
tCounts stopFailing() noexcept;

/// The same for requests by `new` alone: those by malloc, calloc and realloc are neither counted nor refused.
void startFailingNew(int nth, tHowLong howLong) noexcept;
/// Ends it. Returns whether a request has been refused.
inline bool stopFailingNew() noexcept { return stopFailing().refused > 0; }

/// Returns how many of the blocks remembered since the last start have not been freed.
std::size_t held() noexcept;

/// While one lives, requests for memory are the test's own: neither counted nor refused. Thread: any.
class tPause {
public:
    tPause() noexcept { ++count; }
    ~tPause() { --count; }
    tPause(const tPause&) = delete;
    tPause& operator=(const tPause&) = delete;

    inline static constinit std::atomic<int> count{0};
};

/// Suspends all pauses while it lives, for a stand-in that calls the product.
class tProductCall {
public:
    tProductCall() noexcept : pauses_(tPause::count.exchange(0)) {}
    ~tProductCall() { tPause::count += pauses_; }
    tProductCall(const tProductCall&) = delete;
    tProductCall& operator=(const tProductCall&) = delete;

private:
    int pauses_;
};

}  // namespace allocations
