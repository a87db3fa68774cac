#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tool/run/protocol.h"
#include "tool/run/selection.h"

namespace nRun {

enum class tOutcome : std::uint8_t { ok, failed, crashed, hung, exited, leaked, notStarted };

/// A call that has returned.
struct tCall {
    std::string entry;  ///< its name, or "Init", "Stop" or "Cleanup" if the plug-in has none but the host failed
    nStatus::tPhase phase = nStatus::tPhase::initialize;
    std::uint64_t timeMs = 0;
    std::int32_t code = 0;
};

/// A text that was sent to the debugger, such as that of an exception that leaves a plug-in's class.
struct tSaid {
    std::string entry;         ///< named as in tCall: the call that was the last to begin
    bool byHostThread = true;  ///< otherwise the thread may belong to any of the plug-ins
    std::string text;
};

/// What became of a plug-in in one life.
struct tPluginLife {
    std::vector<tCall> calls;
    std::vector<tSaid> said;  ///< counts neither for nor against the plug-in
    tOutcome outcome = tOutcome::ok;
    std::string detail;  ///< one sentence without a final stop; empty if there is nothing to say
};

using tLife = std::vector<tPluginLife>;  ///< one for each plug-in, in start order

struct tResult {
    std::vector<tPlugin> plugins;  ///< in start order
    std::vector<tLife> lives;
};

/// The exit code of the process that runs the plug-ins if it cannot report. No plug-in is likely to use it.
inline constexpr std::uint32_t lostReportsCode = 0x2A57'0001;

/// How the process that runs the plug-ins ended, if it did not finish.
struct tEnding {
    std::optional<std::uint32_t> exitCode;  ///< none if it reported nothing for longer than the limit
    std::uint64_t limitMs = 0;
    std::vector<std::string> windows{};  ///< titles of the windows that were open then
};

/// Says what the events mean. A life beyond those that were asked for is left out if the process survived it. Throws
/// tCannotRun if the process did not come to the first call, or could not go on through no fault of a plug-in's call.
[[nodiscard]] tResult judge(std::vector<tPlugin> plugins, std::size_t times, const std::vector<tEvent>& events,
                            const tEnding& ending);

/// Returns the outcome as JSON shows it: "ok", "notStarted".
[[nodiscard]] std::string_view outcomeName(tOutcome outcome) noexcept;

/// Returns the sentence about what was said, without a final stop.
[[nodiscard]] std::string sentenceOf(const tSaid& said);

/// Returns whether every plug-in was ok in every life.
[[nodiscard]] bool passed(const tResult& result) noexcept;

}  // namespace nRun
