#pragma once

#include <cstddef>

#include "err/StatusRecord.h"

namespace zuerr {

/// Resizes a block from std::malloc and preserves its content; allocates one if it is null, frees it if `bytes` is 0.
/// If memory runs out, returns null, leaves the old block valid and raises -52000 into the record. Does nothing if the
/// record already contains an error.
void* Reallocate(void* block, std::size_t bytes, StatusRecord& status) noexcept;

/// A growable array of UTF-16 units that platform calls fill. Reports through a status record and never throws. New
/// units are zero.
class WideBuffer {
public:
    WideBuffer() = default;
    ~WideBuffer();
    WideBuffer(const WideBuffer&) = delete;
    WideBuffer& operator=(const WideBuffer&) = delete;

    /// Returns false, with the content unchanged, if the record already contains an error or memory runs out.
    bool resize(std::size_t count, StatusRecord& status) noexcept;

    [[nodiscard]] char16_t* data() noexcept { return data_; }
    [[nodiscard]] const char16_t* begin() const noexcept { return data_; }
    [[nodiscard]] const char16_t* end() const noexcept { return data_ + size_; }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

private:
    char16_t* data_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace zuerr
