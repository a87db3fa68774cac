#pragma once

namespace nSystemTime {

/// Measures the time that this thread spends in the system calls of the program while it lives: their entries in the
/// import table of the executable are replaced meanwhile. What the watch itself takes counts as the program's own time.
/// One at a time.
class tWatch {
public:
    tWatch();
    ~tWatch();
    tWatch(const tWatch&) = delete;
    tWatch& operator=(const tWatch&) = delete;

    [[nodiscard]] double seconds() const;
};

}  // namespace nSystemTime
