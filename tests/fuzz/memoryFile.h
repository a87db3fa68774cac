#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "check.h"

/// A file in memory with a path to open it by. One serves all inputs of a fuzzer: making it is dear.
class tMemoryFile {
public:
    tMemoryFile() = default;
    ~tMemoryFile() { close(descriptor_); }
    tMemoryFile(const tMemoryFile&) = delete;
    tMemoryFile& operator=(const tMemoryFile&) = delete;

    void write(std::string_view text) const {
        check(ftruncate(descriptor_, 0) == 0, "ftruncate");
        check(pwrite(descriptor_, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()), "pwrite");
    }
    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }
    [[nodiscard]] std::wstring widePath() const { return L"/proc/self/fd/" + std::to_wstring(descriptor_); }

private:
    int descriptor_ = memfd_create("input", 0);
};
