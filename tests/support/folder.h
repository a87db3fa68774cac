#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace support {

/// Returns the bytes of a file, or an empty string if it cannot be opened.
inline std::string read(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// An empty folder for one test, removed with its contents on destruction. Paths are built from UTF-16 names, so that
/// they do not depend on the locale on any platform.
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

    /// Writes a file, creates its folders if necessary, and returns its path in UTF-8.
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
