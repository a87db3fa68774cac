#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

namespace support {

/// An empty folder for one test, gone with all that is in it when the test is over. Names are UTF-16, which every
/// platform's paths can be made of without a look at the locale.
class tFolder {
public:
    tFolder() : path_(std::filesystem::temp_directory_path() / ("zuziptra" + std::to_string(std::random_device{}()))) {
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

    /// Gives its path in UTF-8.
    std::string write(const std::filesystem::path& name, std::string_view content = "") const {
        std::ofstream(path_ / name, std::ios::binary)
            .write(content.data(), static_cast<std::streamsize>(content.size()));
        return utf8(name);
    }

private:
    std::filesystem::path path_;
};

}  // namespace support
