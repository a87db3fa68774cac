#include "tests/support/failingNew.h"

#include <cstdlib>
#include <new>

namespace failingNew {
namespace {

// Of the one thread that the tests run on. Not thread_local: with this compiler that ends in GetLastError, which a test
// may have replaced by something that allocates.
constinit int allocationsLeft = -1;  // before the one that fails; -1 when none does
constinit tHowLong duration = tHowLong::once;
constinit bool failed = false;

void* allocate(std::size_t size) noexcept {
    if (allocationsLeft == 0) {
        failed = true;
        if (duration == tHowLong::once) allocationsLeft = -1;
        return nullptr;
    }
    if (allocationsLeft > 0) --allocationsLeft;
    return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

void start(int nth, tHowLong howLong) noexcept {
    allocationsLeft = nth - 1;
    duration = howLong;
    failed = false;
}

bool stop() noexcept {
    allocationsLeft = -1;
    return failed;
}

}  // namespace failingNew

// All forms: a sanitizer's own operators would otherwise stand in for those that are missing.
void* operator new(std::size_t size) {
    void* const block = failingNew::allocate(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return failingNew::allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return failingNew::allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept { std::free(block); }
