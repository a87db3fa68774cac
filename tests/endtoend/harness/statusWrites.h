#pragma once

#include <array>
#include <cstddef>

#include "tests/endtoend/harness/system.h"

namespace endtoend {

/// Counts how often the status file has been replaced since this object was made. It looks at the folder only: reading
/// the file again and again until it says something would be in the way of the next replacement now and then, which
/// the product then leaves out.
class tStatusWrites {
public:
    tStatusWrites();
    ~tStatusWrites();
    tStatusWrites(const tStatusWrites&) = delete;
    tStatusWrites& operator=(const tStatusWrites&) = delete;

    void waitFor(int count);

private:
    void listen();
    /// How many of the changes that the system has told of are replacements.
    [[nodiscard]] int replacements() const;

    tHandle folder_;
    tHandle event_;
    OVERLAPPED pending_{};
    alignas(DWORD) std::array<std::byte, 16384> changes_{};
    int count_ = 0;
};

}  // namespace endtoend
