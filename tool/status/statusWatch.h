#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "tool/context.h"

/// Shows a status file and draws it again whenever it has changed.
namespace nStatus {

/// Where and how long to draw.
struct tDisplay {
    bool isTerminal = false;              ///< otherwise every new content is written below the one before
    std::function<std::size_t()> rows{};  ///< the terminal's height
    std::function<bool()> waitForEnd{};   ///< waits until it is time to look again; returns whether the user ended it
};

/// Returns the display of this process: looks every second and ends on Ctrl+C.
[[nodiscard]] tDisplay processDisplay();

/// Draws until the display ends. A file that cannot be read is named below its last content, until it can be read
/// again.
void watch(tContext& context, const std::string& file, const tDisplay& display);

/// Returns what draws these lines over those that were drawn before, without erasing anything that stays the same: each
/// line, and what is left of an older one. Starts and ends at the beginning of the line below what was drawn.
[[nodiscard]] std::string redraw(std::string_view lines, std::size_t linesBefore);

/// Returns the text if it has no more lines than the limit, otherwise its beginning and how many lines are not shown.
/// Requires: lines that end with LF; a limit above 0.
[[nodiscard]] std::string firstLines(std::string_view text, std::size_t limit);

}  // namespace nStatus
