#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

/// A temporary file. All inputs of a fuzzer share one, because creating a file takes longer than most inputs.
class tTemporaryFile {
public:
    tTemporaryFile() = default;
    ~tTemporaryFile() { std::filesystem::remove(path_); }
    tTemporaryFile(const tTemporaryFile&) = delete;
    tTemporaryFile& operator=(const tTemporaryFile&) = delete;

    void write(std::string_view text) const { std::ofstream(path_, std::ios::binary) << text; }
    [[nodiscard]] std::string path() const { return path_.string(); }
    [[nodiscard]] std::wstring widePath() const { return path_.wstring(); }

private:
    std::filesystem::path path_ =
        std::filesystem::temp_directory_path() / ("fuzz-input-" + std::to_string(std::random_device{}()));
};
