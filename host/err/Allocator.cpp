#include "err/Allocator.h"

#include <cstdint>
#include <cstdlib>

namespace zuerr {
namespace {

constexpr RaiseReport allocationFailed{outOfMemory, {"zubrx/err/Allocator", 31}};

}  // namespace

void* Reallocate(void* block, std::size_t bytes, StatusRecord& status) noexcept {
    if (status.failed()) return nullptr;
    if (bytes == 0) {
        std::free(block);
        return nullptr;
    }
    void* const grown = std::realloc(block, bytes);
    if (grown == nullptr) RaiseInto(status, allocationFailed.code, allocationFailed);
    return grown;
}

WideBuffer::~WideBuffer() { std::free(data_); }

bool WideBuffer::resize(std::size_t count, StatusRecord& status) noexcept {
    // A count whose byte size overflows fails like any allocation that is too large.
    const std::size_t bytes = count > SIZE_MAX / sizeof(char16_t) ? SIZE_MAX : count * sizeof(char16_t);
    auto* const block = static_cast<char16_t*>(Reallocate(data_, bytes, status));
    if (status.failed()) return false;
    for (std::size_t i = size_; i < count; ++i) block[i] = 0;
    data_ = block;
    size_ = count;
    return true;
}

}  // namespace zuerr
