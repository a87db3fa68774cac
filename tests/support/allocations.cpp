#include "tests/support/allocations.h"

#include <cstdint>
#include <cstdlib>

namespace allocations {
namespace {

std::size_t smallestRefused = SIZE_MAX;
int refusals = 0;

bool refuses(std::size_t bytes) noexcept {
    if (bytes < smallestRefused) return false;
    ++refusals;
    return true;
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

}  // namespace allocations

extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_realloc(void* block, std::size_t bytes);

void* __wrap_malloc(std::size_t bytes) { return allocations::refuses(bytes) ? nullptr : __real_malloc(bytes); }

void* __wrap_realloc(void* block, std::size_t bytes) {
    return allocations::refuses(bytes) ? nullptr : __real_realloc(block, bytes);
}
}
