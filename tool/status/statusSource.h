#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "tool/status/statusReport.h"

/// Reads the status file, which the host may be replacing at that moment.
namespace nStatus {

/// A file that cannot be read. Its text is one sentence for people.
struct tCannotRead : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Returns the path of the host's status file on this machine. Throws tCannotRead if the system does not say where it
/// is.
[[nodiscard]] std::string hostsFile();

/// Returns the content of the file (UTF-8 path), which is open only briefly and never in the host's way. If there is no
/// file, or it cannot be opened for the moment, tries again for a fifth of a second. Throws tCannotRead, also if the
/// file is larger than 1 GiB.
[[nodiscard]] std::string readFile(const std::string& path);

/// Reads the file and what it says. Throws tCannotRead as above, and if it is no status file.
[[nodiscard]] tReport readReport(const std::string& path);

/// The platform's part.
namespace nPlatform {

inline constexpr std::size_t largestSize = std::size_t{1} << 30U;

enum class tOutcome : std::uint8_t { read, tryAgain, failed };

struct tAttempt {
    tOutcome outcome = tOutcome::failed;
    std::string text;  ///< the content, or the system's reason for the failure
};

[[nodiscard]] tAttempt tryToRead(const std::string& path);

}  // namespace nPlatform

}  // namespace nStatus
