#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>

/// The parts of the platform's file system that the parser needs.
namespace nIni {

struct tFileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using tFile = std::unique_ptr<std::FILE, tFileCloser>;

/// Opens the file for reading, byte for byte. Returns null on failure.
[[nodiscard]] tFile openFile(const wchar_t* path);

/// Returns the time in units of 100 ns since the beginning of 1601, UTC; nullopt if there is no such file.
[[nodiscard]] std::optional<std::uint64_t> lastWriteTime(const wchar_t* path);

}  // namespace nIni
