#pragma once

#include <string>
#include <string_view>

/// A file that is open for reading, on systems other than Windows.
class tFileDescriptor {
public:
    /// Opens the file without waiting for the other end of a pipe. Remembers its folder, which stays open: the system
    /// finds the next file of the same folder faster from there than from the root.
    explicit tFileDescriptor(const std::string& path);
    ~tFileDescriptor();
    tFileDescriptor(const tFileDescriptor&) = delete;
    tFileDescriptor& operator=(const tFileDescriptor&) = delete;

    /// Returns a negative number if the file cannot be opened.
    [[nodiscard]] int number() const noexcept { return number_; }

private:
    int number_;
};

/// Writes the whole content to an open file; errno says why that fails.
[[nodiscard]] bool writeAll(int file, std::string_view content) noexcept;
