#pragma once

#include <cstdint>
#include <string>

/// What the host finds on the machine on which the tool runs.
namespace nThisMachine {

/// Returns whether the host can run here: it is a Windows program.
[[nodiscard]] bool runsHost() noexcept;

struct tAllowed {
    std::uint32_t mask = 0xFFFFFFFF;
    std::string message;  ///< what the host adds to its messages if the query fails; otherwise empty
};

/// Queries which features are allowed, as the host does, but without its pauses and further attempts. Where the host
/// cannot run, everything is allowed.
[[nodiscard]] tAllowed queryAllowed();

}  // namespace nThisMachine
