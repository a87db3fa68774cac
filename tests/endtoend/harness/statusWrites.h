#pragma once

#include <array>
#include <cstddef>

#include "tests/endtoend/harness/system.h"

namespace endtoend {

/// Counts how often the status file has been replaced since construction. It only watches the folder: reading the file
/// repeatedly would sometimes prevent the next replacement.
class tStatusWrites {
public:
    tStatusWrites();
    ~tStatusWrites();
    tStatusWrites(const tStatusWrites&) = delete;
    tStatusWrites& operator=(const tStatusWrites&) = delete;

    void waitFor(int count);

private:
    void listen();
    /// How many of the changes in the system's last answer are replacements.
    [[nodiscard]] int replacements() const;

    tHandle folder_;
    tHandle event_;
    OVERLAPPED pending_{};
    alignas(DWORD) std::array<std::byte, 16384> changes_{};
    int count_ = 0;
};

}  // namespace endtoend
