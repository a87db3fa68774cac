#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "source/descriptionFormat.h"
#include "source/nPluginData.h"
#include "tool/check/descriptionValues.h"
#include "tool/check/fileFindings.h"

namespace nCheck {

/// The lines of the keys that count, in the order of nDescriptionFormat::nKeys::all.
class tKeyLines {
public:
    tKeyLines() = default;  ///< of a file without keys
    explicit tKeyLines(const tKeys& keys) noexcept;

    /// Returns nullopt if the file has no such key. Requires: the name is one of nKeys.
    [[nodiscard]] std::optional<int> of(std::string_view key) const noexcept;
    /// The same for a key by its position in that list.
    [[nodiscard]] std::optional<int> at(std::size_t key) const noexcept { return lines_[key]; }
    void set(std::string_view key, int line) noexcept;

private:
    std::array<std::optional<int>, nDescriptionFormat::nKeys::all.size()> lines_;
};

/// A description file as the host reads it.
struct tDescriptionFile {
    explicit tDescriptionFile(std::string path) : findings(std::move(path)) {}

    tFileFindings findings;                         ///< knows the file's path
    std::optional<tPluginDescription> description;  ///< none if the host rejects the file
    std::string rejectedName;                       ///< of the plug-in, if the host rejects the file but it has one
    tKeyLines lines;
};

/// Reads the file, and finds what is wrong with its lines and values. Throws std::bad_alloc.
[[nodiscard]] tDescriptionFile readFile(std::string path);

}  // namespace nCheck
