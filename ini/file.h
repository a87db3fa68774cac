#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

/// What the parser asks of the platform's file system.
namespace nIni {

struct tFileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using tFile = std::unique_ptr<std::FILE, tFileCloser>;

/// Opened for reading, byte for byte; null when it cannot be.
[[nodiscard]] tFile openFile(const wchar_t* path);

/// Whether the path leads to anything at all; a link that leads nowhere counts.
[[nodiscard]] bool exists(const wchar_t* path);

/// Of an open file, in units of 100 ns since the beginning of 1601, UTC; 0 when the system has none. It is asked by the
/// file and not by its path, which would take as long as opening it once more.
[[nodiscard]] std::uint64_t lastWriteTime(std::FILE* file);

}  // namespace nIni
