#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "err/StatusRecord.h"

namespace zuerr {

/// Resizes a block from std::malloc, keeping its content; null grows from nothing, 0 bytes release it. When memory
/// runs out the old block stays, null is returned and the record gets -52000; a record that already holds an error
/// makes this do nothing.
void* Reallocate(void* block, std::size_t bytes, StatusRecord& status) noexcept;

/// A growable array of plain values for platform calls to write into. It reports through a status record and never
/// throws. New elements are zero.
template <class T>
class Buffer {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    Buffer() = default;
    ~Buffer();
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    /// Count is in elements. False, and the content unchanged, when the record holds or gets an error.
    bool resize(std::size_t count, StatusRecord& status) noexcept;

    [[nodiscard]] T* data() noexcept { return data_; }
    [[nodiscard]] const T* begin() const noexcept { return data_; }
    [[nodiscard]] const T* end() const noexcept { return data_ + size_; }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

private:
    T* data_ = nullptr;
    std::size_t size_ = 0;
};

template <class T>
Buffer<T>::~Buffer() {
    StatusRecord ignored;
    Reallocate(data_, 0, ignored);
}

template <class T>
bool Buffer<T>::resize(std::size_t count, StatusRecord& status) noexcept {
    // A count whose bytes cannot be told fails like any other that memory is too small for.
    const std::size_t bytes = count > SIZE_MAX / sizeof(T) ? SIZE_MAX : count * sizeof(T);
    T* const block = static_cast<T*>(Reallocate(data_, bytes, status));
    if (status.failed()) return false;
    if (count > size_) std::fill(block + size_, block + count, T{});
    data_ = block;
    size_ = count;
    return true;
}

}  // namespace zuerr
