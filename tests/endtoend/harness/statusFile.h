#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "tests/endtoend/harness/system.h"

namespace endtoend {

/// One plug-in's paragraph of the status file.
struct tPluginStatus {
    /// The lines of one entry point: "LABEL Time: N ms" and "LABEL Code: N".
    struct tCall {
        std::string label;
        std::uint32_t milliseconds;
        std::int32_t code;
    };

    std::string name;
    std::string dependencies;
    std::string loadedFrom;
    std::vector<tCall> calls;

    /// The code shown for an entry point; 0 if it is not shown, which means success in no time.
    [[nodiscard]] std::int32_t code(std::string_view label) const;
};

/// A parsed status file. Any other text results in an empty one, so a reader may simply try again.
struct tStatusFile {
    std::string bytes;  ///< as on the disk
    std::string allowed;
    std::string messages;  ///< line ends as "\n"
    std::vector<tPluginStatus> plugins;

    /// Returns the paragraph of the first plug-in of that name. Throws std::runtime_error if there is none.
    [[nodiscard]] const tPluginStatus& plugin(std::string_view name) const;
    /// The names in start order, separated by blanks.
    [[nodiscard]] std::string names() const;

    [[nodiscard]] static tStatusFile parse(const std::string& bytes);
    /// The product's, as it is now.
    [[nodiscard]] static tStatusFile read();
    [[nodiscard]] static tPath path() { return makerFolder() / L"zuZiptraRemoteService.status"; }
    [[nodiscard]] static tPath temporaryPath() { return makerFolder() / L".zuZiptraRemoteService.status.tmp"; }
};

}  // namespace endtoend
