#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tool/check/descriptionFile.h"

namespace nCheck {

/// The plug-ins of one name, by their ranks in the start order.
struct tNamed {
    std::vector<std::size_t> plugins;  ///< positions, in start order
    std::size_t firstRank = 0;
};

/// All descriptions of one run. A plug-in is identified by its position among the descriptions, which are in the order
/// of the files; its rank is its position in the order in which the host starts them.
class tCatalogue {
public:
    /// Throws std::bad_alloc.
    explicit tCatalogue(std::vector<tDescriptionFile> files);
    ~tCatalogue() = default;
    tCatalogue(const tCatalogue&) = delete;
    tCatalogue& operator=(const tCatalogue&) = delete;

    [[nodiscard]] const std::vector<tPluginDescription>& descriptions() const noexcept { return descriptions_; }
    [[nodiscard]] std::size_t size() const noexcept { return descriptions_.size(); }

    /// Returns the positions in the order in which the host starts the plug-ins.
    [[nodiscard]] const std::vector<std::size_t>& order() const noexcept { return order_; }
    [[nodiscard]] std::size_t rank(std::size_t plugin) const noexcept { return ranks_[plugin]; }

    /// Returns null if no plug-in has this name.
    [[nodiscard]] const tNamed* named(std::string_view name) const;
    [[nodiscard]] const std::unordered_map<std::string_view, tNamed>& names() const noexcept { return names_; }

    [[nodiscard]] tFileFindings& findings(std::size_t plugin) noexcept { return fileOf(plugin).findings; }
    [[nodiscard]] const std::string& path(std::size_t plugin) const noexcept { return fileOf(plugin).findings.file(); }
    [[nodiscard]] const tKeyLines& lines(std::size_t plugin) const noexcept { return fileOf(plugin).lines; }

    /// Returns all files, in their order. The descriptions in them have been moved away.
    [[nodiscard]] const std::vector<tDescriptionFile>& files() const noexcept { return files_; }

    /// Returns the findings of all files, in the order of files and lines, and removes them.
    [[nodiscard]] std::vector<tFinding> takeFindings();

    /// Returns the path of a plug-in's file and removes it. Requires: its findings have been taken.
    [[nodiscard]] std::string takePath(std::size_t plugin) noexcept { return fileOf(plugin).findings.takeFile(); }

    /// Returns a plug-in's description and removes it, after which none of the other functions may ask for its name.
    [[nodiscard]] tPluginDescription takeDescription(std::size_t plugin) { return std::move(descriptions_[plugin]); }

private:
    [[nodiscard]] tDescriptionFile& fileOf(std::size_t plugin) noexcept { return files_[fileIndexes_[plugin]]; }
    [[nodiscard]] const tDescriptionFile& fileOf(std::size_t plugin) const noexcept {
        return files_[fileIndexes_[plugin]];
    }

    std::vector<tDescriptionFile> files_;
    std::vector<tPluginDescription> descriptions_;
    std::vector<std::size_t> fileIndexes_;
    std::vector<std::size_t> order_;
    std::vector<std::size_t> ranks_;
    std::unordered_map<std::string_view, tNamed> names_;
};

}  // namespace nCheck
