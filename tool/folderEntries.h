#pragma once

#include <optional>
#include <string>
#include <vector>

/// Lists folders of systems other than Windows. The standard library and Boost would put together the path of each
/// entry, which takes longer than listing it.
namespace nFolderEntries {

struct tEntry {
    std::string name;
    bool isFile = false;  ///< a regular file, or a link to one
};

/// Returns the entries except "." and "..", in no order, or nullopt if the folder cannot be read.
[[nodiscard]] std::optional<std::vector<tEntry>> list(const std::string& folder);

}  // namespace nFolderEntries
