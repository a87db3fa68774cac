#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// Descriptions of plug-ins, below build/bench/host. All paths are in their exact letter case, which spares Wine a
/// search of the directory.
class tDescriptions {
public:
    /// Makes the files, unless they are there.
    explicit tDescriptions(int count);

    [[nodiscard]] const std::filesystem::path& directory() const { return directory_; }
    /// What the descriptions give as the libraries' paths.
    [[nodiscard]] const std::vector<std::string>& libraries() const { return libraries_; }

private:
    std::filesystem::path directory_;
    std::vector<std::string> libraries_;
};

/// Makes each of them a library of its own, unless it is there, and the host find the descriptions.
void stageHost(const tDescriptions& descriptions);

/// Where the host keeps the status file.
[[nodiscard]] std::filesystem::path statusFolder();
[[nodiscard]] std::string readText(const std::filesystem::path& path);
