#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// Description files of plug-ins, below build/bench/host. All paths have the exact letter case of the files, which
/// spares Wine a search of the directory.
class tDescriptions {
public:
    /// Writes the files that do not exist.
    explicit tDescriptions(int count);

    [[nodiscard]] const std::filesystem::path& directory() const { return directory_; }
    /// The libraries' paths, as in the descriptions.
    [[nodiscard]] const std::vector<std::string>& libraries() const { return libraries_; }

private:
    std::filesystem::path directory_;
    std::vector<std::string> libraries_;
};

/// Writes each plug-in's library that does not exist, and makes the descriptions' directory the shared directory.
void stageHost(const tDescriptions& descriptions);

/// Returns the folder of the host's status file.
[[nodiscard]] std::filesystem::path statusFolder();
[[nodiscard]] std::string readText(const std::filesystem::path& path);
