#include "err/Allocator.h"

#include <cstdlib>

namespace zuerr {

void* Reallocate(void* block, std::size_t bytes, StatusRecord& status) noexcept {
    if (status.failed()) return nullptr;
    if (bytes == 0) {
        std::free(block);
        return nullptr;
    }
    void* const grown = std::realloc(block, bytes);
    if (grown == nullptr) {
        RaiseInto(status, outOfMemory.code, {outOfMemory, {"zubrx/err/Allocator", 31}});
    }
    return grown;
}

}  // namespace zuerr
