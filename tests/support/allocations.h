#pragma once

#include <cerrno>
#include <cstddef>
#include <memory>
#include <utility>

/// Makes memory run out in a test. The linker redirects every malloc, calloc, realloc and free of the test program to
/// this module, and with them every `new`; on Windows also those of the runtime libraries. Thread: one at a time. Put
/// expectations after the action, not inside it.
namespace allocations {

/// From now on, requests for at least `bytes` are refused and counted.
void startRefusing(std::size_t bytes) noexcept;
/// Stops refusing. Returns how many were refused.
int stopRefusing() noexcept;

/// Runs the action while requests for at least `bytes` are refused. Returns how many were refused.
template <class Action>
int refused(std::size_t bytes, Action action) {
    const std::unique_ptr<Action, void (*)(Action*)> stop(&action, [](Action*) { stopRefusing(); });
    startRefusing(bytes);
    action();
    return stopRefusing();
}

enum class tHowLong { once, forEver };

/// From now on, this thread's requests are counted, their blocks are recorded, and the `nth` request, counted from 1,
/// is refused, with all later ones if `howLong` says so. If `nth` is 0, none is refused.
void startFailing(int nth, tHowLong howLong) noexcept;

struct tCounts {
    int requests;
    int refused;
};

/// Stops this. Returns the counts.
tCounts stopFailing() noexcept;

/// The same only for requests by `new`: those by malloc, calloc and realloc are neither counted nor refused.
void startFailingNew(int nth, tHowLong howLong) noexcept;
/// Stops this. Returns whether a request has been refused.
inline bool stopFailingNew() noexcept { return stopFailing().refused > 0; }

/// Returns how many of the blocks recorded since the last start have not been freed.
std::size_t held() noexcept;

/// Whose requests are counted: the address of the thread's errno, which needs no memory; null if none are.
inline constinit const int* watchedThread = nullptr;

[[nodiscard]] inline bool isThisThreadWatched() noexcept { return watchedThread == &errno; }

/// While one exists, requests for memory by its thread are neither counted nor refused: they are the test's own.
/// Thread: any; a thread that stays in one, or ends there, does not matter to the others.
class tPause {
public:
    tPause() noexcept : counts_(isThisThreadWatched()) {
        if (counts_) ++count;
    }
    ~tPause() {
        if (counts_) --count;
    }
    tPause(const tPause&) = delete;
    tPause& operator=(const tPause&) = delete;

    inline static constinit int count = 0;  ///< of the thread that is watched

private:
    bool counts_;
};

/// Suspends all pauses while it exists, for a stand-in that calls the product.
class tProductCall {
public:
    tProductCall() noexcept : pauses_(isThisThreadWatched() ? std::exchange(tPause::count, 0) : 0) {}
    ~tProductCall() {
        if (pauses_ != 0) tPause::count += pauses_;
    }
    tProductCall(const tProductCall&) = delete;
    tProductCall& operator=(const tProductCall&) = delete;

private:
    int pauses_;
};

}  // namespace allocations
