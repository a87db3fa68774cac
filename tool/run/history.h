#pragma once

#include <array>
#include <vector>

#include "tool/run/protocol.h"

namespace nRun {

/// What was reported about a plug-in in one life.
struct tRecord {
    std::array<const tEvent*, 3> returned{};  ///< by phase; null if the call has not returned
    std::vector<const tEvent*> said{};
    std::vector<const tEvent*> left{};
};

/// The events of a process, put in order.
struct tHistory {
    /// Lives in which at least one call began; the last one is incomplete unless `finished`.
    std::vector<std::vector<tRecord>> lives{};
    const tEvent* last = nullptr;  ///< the call that began last
    const tEvent* end = nullptr;   ///< why the process ended, if it could report that
    bool ready = false;            ///< whether the process has the same plug-ins
    bool running = false;          ///< whether the last call has not returned
    bool finished = false;
};

/// Returns whether handles were left open in lives that all came to their end.
[[nodiscard]] bool leftHandles(const std::vector<tEvent>& events);

/// Returns the events with those about handles replaced by those of another process, unless that did not finish.
[[nodiscard]] std::vector<tEvent> withHandlesOf(std::vector<tEvent> events, const std::vector<tEvent>& other);

/// Ignores events of plug-ins or lives that do not exist. The events must outlive the result.
[[nodiscard]] tHistory historyOf(std::size_t plugins, const std::vector<tEvent>& events);

}  // namespace nRun
