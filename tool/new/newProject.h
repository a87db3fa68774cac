#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nNew {

struct tFile {
    std::string name;
    std::string content;

    bool operator==(const tFile&) const = default;
};

/// Returns the files of a new project, in the order of their names. Requires: a name without a problem; "c", "c++" or
/// "rust".
[[nodiscard]] std::vector<tFile> filesOf(std::string_view name, std::string_view language);

}  // namespace nNew
