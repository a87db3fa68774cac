#include "tool/status/statusSource.h"

#include <chrono>
#include <thread>
#include <utility>
#include <variant>

#include "tool/format.h"

namespace nStatus {

using nPlatform::tAttempt;
using nPlatform::tOutcome;

std::string readFile(const std::string& path) {
    constexpr int attempts = 20;
    constexpr std::chrono::milliseconds pause(10);
    tAttempt attempt = nPlatform::tryToRead(path);
    for (int i = 1; i < attempts && attempt.outcome == tOutcome::tryAgain; ++i) {
        std::this_thread::sleep_for(pause);
        attempt = nPlatform::tryToRead(path);
    }
    if (attempt.outcome != tOutcome::read) {
        throw tCannotRead(fmt::format("Cannot read '{}': {}", path, attempt.text));
    }
    return std::move(attempt.text);
}

tReport readReport(const std::string& path) {
    auto result = read(readFile(path));
    if (const auto* const no = std::get_if<tNotAStatusFile>(&result)) {
        throw tCannotRead(fmt::format("'{}' is no status file: line {}: {}", path, no->line, no->reason));
    }
    return std::move(std::get<tReport>(result));
}

}  // namespace nStatus
