#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace support {

/// The bytes of a file; empty if it cannot be opened.
inline std::string read(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// An empty folder for one test, removed with everything in it. Paths are made of UTF-16 names, so that the locale does
/// not matter on any platform.
class tFolder {
public:
    explicit tFolder(const std::filesystem::path& prefix = "zuziptra") {
        path_ = std::filesystem::temp_directory_path() / prefix;
        path_ += std::to_string(std::random_device{}());
        create_directories(path_);
    }
    ~tFolder() {
        std::error_code ignored;
        remove_all(path_, ignored);
    }
    tFolder(const tFolder&) = delete;
    tFolder& operator=(const tFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::string utf8(const std::filesystem::path& name = {}) const {
        std::filesystem::path full = name.empty() ? path_ : path_ / name;
        const std::u8string text = full.make_preferred().u8string();
        return {text.begin(), text.end()};
    }

    std::filesystem::path makeFolder(const std::filesystem::path& name) const {
        create_directories(path_ / name);
        return path_ / name;
    }

    /// Writes a file, in folders that are made for it if need be, and returns its path in UTF-8.
    std::string write(const std::filesystem::path& name, std::string_view content = "") const {
        create_directories((path_ / name).parent_path());
        std::ofstream(path_ / name, std::ios::binary)
            .write(content.data(), static_cast<std::streamsize>(content.size()));
        return utf8(name);
    }
    [[nodiscard]] std::string read(const std::filesystem::path& name) const { return support::read(path_ / name); }
    [[nodiscard]] bool has(const std::filesystem::path& name) const { return exists(path_ / name); }

private:
    std::filesystem::path path_;
};

}  // namespace support
