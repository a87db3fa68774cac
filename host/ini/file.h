#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>

/// What the parser asks of the platform's file system.
namespace nIni {

struct tFileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using tFile = std::unique_ptr<std::FILE, tFileCloser>;

/// Opened for reading, byte for byte; null when it cannot be.
[[nodiscard]] tFile openFile(const wchar_t* path);

/// In units of 100 ns since the beginning of 1601, UTC. Nothing when the path leads to no file.
[[nodiscard]] std::optional<std::uint64_t> lastWriteTime(const wchar_t* path);

}  // namespace nIni
