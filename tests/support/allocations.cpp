#include "tests/support/allocations.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

#include "err/Exception.h"

namespace allocations {
namespace {

constinit std::size_t smallestRefused = SIZE_MAX;
constinit int refusals = 0;

// In static memory, because all of this may be called before any constructor has run.
constinit int failingRequest = 0;
constinit tHowLong duration = tHowLong::once;
constinit bool newOnly = false;
constinit bool isNew = false;  // the request comes from `new`
constinit tCounts counts{0, 0};

/// A set of addresses that allocates no memory: an open-addressing hash table with linear probing. It drops addresses
/// when it is full.
class tBlocks {
public:
    void clear() noexcept {
        blocks_.fill(nullptr);
        size_ = 0;
    }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    void add(void* block) noexcept {
        if (2 * (size_ + 1) > blocks_.size()) return;
        ++size_;
        std::size_t at = firstSlot(block);
        while (blocks_[at] != nullptr) at = next(at);
        blocks_[at] = block;
    }

    void remove(void* block) noexcept {
        std::size_t at = firstSlot(block);
        while (blocks_[at] != nullptr && blocks_[at] != block) at = next(at);
        if (blocks_[at] == nullptr) return;
        blocks_[at] = nullptr;
        --size_;
        // The following addresses may have become unreachable: insert them again.
        for (at = next(at); blocks_[at] != nullptr; at = next(at)) {
            void* const moved = blocks_[at];
            blocks_[at] = nullptr;
            --size_;
            add(moved);
        }
    }

private:
    [[nodiscard]] static std::size_t firstSlot(const void* block) noexcept {
        return (reinterpret_cast<std::uintptr_t>(block) / 16 * 0x9E3779B97F4A7C15U) >> 48U;
    }
    [[nodiscard]] static std::size_t next(std::size_t at) noexcept { return (at + 1) % 0x10000; }

    std::array<void*, 0x10000> blocks_{};
    std::size_t size_ = 0;
};

constinit tBlocks blocks;

bool isWatched() noexcept { return isThisThreadWatched() && tPause::count == 0; }

bool refuses(std::size_t bytes) noexcept {
    if (bytes >= smallestRefused) {
        ++refusals;
        return true;
    }
    if (!isWatched() || (newOnly && !isNew)) return false;
    ++counts.requests;
    const bool due = counts.requests == failingRequest ||
                     (duration == tHowLong::forEver && failingRequest != 0 && counts.requests > failingRequest);
    if (due) ++counts.refused;
    return due;
}

void* remembered(void* block) noexcept {
    if (block != nullptr && isWatched()) blocks.add(block);
    return block;
}

void fail(int nth, tHowLong howLong, bool requestsByNewOnly) noexcept {
    blocks.clear();
    newOnly = requestsByNewOnly;
    counts = {0, 0};
    failingRequest = nth;
    duration = howLong;
    watchedThread = &errno;
}

/// On a thread's first exception, and on the first one for which no memory is left, the runtime libraries allocate
/// memory that they never free, and end the process if they cannot.
void settleLibraries() noexcept {
    static bool settled = false;
    if (std::exchange(settled, true)) return;
    fail(1, tHowLong::once, false);
    try {
        throw std::bad_alloc();
    } catch (const std::bad_alloc&) {
        stopFailing();
        static_cast<void>(zuerr::ExceptionIsPropagating());
    }
}

}  // namespace

void startRefusing(std::size_t bytes) noexcept {
    smallestRefused = bytes;
    refusals = 0;
}

int stopRefusing() noexcept {
    smallestRefused = SIZE_MAX;
    return refusals;
}

void startFailing(int nth, tHowLong howLong) noexcept {
    settleLibraries();
    fail(nth, howLong, false);
}

void startFailingNew(int nth, tHowLong howLong) noexcept {
    settleLibraries();
    fail(nth, howLong, true);
}

tCounts stopFailing() noexcept {
    watchedThread = nullptr;
    newOnly = false;
    return counts;
}

std::size_t held() noexcept { return blocks.size(); }

void* requestByNew(std::size_t bytes) noexcept {
    const bool matters = newOnly && isThisThreadWatched();
    if (matters) isNew = true;
    void* const block = std::malloc(bytes == 0 ? 1 : bytes);
    if (matters) isNew = false;
    return block;
}

}  // namespace allocations

// All forms: otherwise a sanitizer's own operators would be used in place of missing ones.
void* operator new(std::size_t size) {
    void* const block = allocations::requestByNew(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return allocations::requestByNew(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept { std::free(block); }

extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t count, std::size_t bytes);
void* __real_realloc(void* block, std::size_t bytes);
void __real_free(void* block);

void* __wrap_malloc(std::size_t bytes) {
    return allocations::refuses(bytes) ? nullptr : allocations::remembered(__real_malloc(bytes));
}

void* __wrap_calloc(std::size_t count, std::size_t bytes) {
    return allocations::refuses(count * bytes) ? nullptr : allocations::remembered(__real_calloc(count, bytes));
}

void* __wrap_realloc(void* block, std::size_t bytes) {
    if (allocations::refuses(bytes)) return nullptr;
    void* const resized = __real_realloc(block, bytes);
    if (resized != nullptr) allocations::blocks.remove(block);
    return allocations::remembered(resized);
}

void __wrap_free(void* block) {
    if (block != nullptr) allocations::blocks.remove(block);
    __real_free(block);
}
}
