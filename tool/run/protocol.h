#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tool/status/statusReport.h"

namespace nRun {

/// What the process that runs plug-ins reports, one line each: a letter, four numbers and a text. It may be ended at
/// any byte.
enum class tEventKind : char {
    ready = 'r',        ///< it is about to run so many (`number`) plug-ins
    called = 'c',       ///< a call of `plugin` begins: `phase`
    returned = 'd',     ///< it has returned after `number` milliseconds with `code`
    said = 's',         ///< `text` went to the debugger in `phase` of `plugin`; if `number` is 1, on another thread
    left = 'l',         ///< in the life `number`, `plugin` left something behind other than handles: `text`
    leftHandles = 'h',  ///< in the life `number`, `plugin` left handles open: `text`
    lifeOver = 'o',     ///< all plug-ins have been cleaned up
    finished = 'z',     ///< all lives are over
    faulted = 'f',      ///< nothing handles the exception `code` at `text`; `number` is 1 if a thread may lack its code
    aborted = 'a',      ///< something called abort
    threw = 't',        ///< the call threw something that the host does not catch
    endedThread = 'e',  ///< the call ended the host's thread
    keptLibrary = 'k',  ///< the call failed, and the library of `plugin` cannot be unloaded, which ends the host's run
    gaveUp = 'g',       ///< the process cannot go on, through no fault of a plug-in's call; `text` is the reason
};

struct tEvent {
    tEventKind kind = tEventKind::ready;
    std::size_t plugin = 0;  ///< its position in the start order
    nStatus::tPhase phase = nStatus::tPhase::initialize;
    std::uint64_t number = 0;
    std::int32_t code = 0;
    std::string text{};  ///< without line breaks
};

/// Returns the line for an event, with its line break.
[[nodiscard]] std::string toLine(const tEvent& event);

/// Reads lines that arrive in pieces. Ignores lines that describe no event: plug-ins could write there, too.
class tReader {
public:
    /// Returns whether the bytes completed an event.
    bool add(std::string_view bytes);

    [[nodiscard]] const std::vector<tEvent>& events() const noexcept { return events_; }

    /// Longer lines are ignored.
    static constexpr std::size_t longestLine = 0x10000;

private:
    std::string line_;  ///< as much as has arrived of the last one
    std::vector<tEvent> events_;
};

}  // namespace nRun
