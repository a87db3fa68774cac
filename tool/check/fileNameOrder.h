#pragma once

#include <string>
#include <vector>

/// The order in which Windows lists the files of a folder.
namespace nFileNameOrder {

/// Returns a text by which file names (UTF-8) are ordered as on Windows: unit by unit in UTF-16, in upper case.
[[nodiscard]] std::u16string sortKey(const std::string& fileName);

/// Sorts paths by the names of the files; those of one name stay in their order.
void sort(std::vector<std::string>& paths);

}  // namespace nFileNameOrder
