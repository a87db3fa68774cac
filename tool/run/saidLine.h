#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "tool/run/protocol.h"

namespace nRun {

/// The line of the event tEventKind::said. Made without the heap, which the thread that says something may have locked.
class tSaidLine {
public:
    /// Uses the text up to its first null, without the white space at its ends. Of a longer one, of which one byte more
    /// is enough, the beginning is used, up to the end of a character, and then an ellipsis. Line breaks and other
    /// control characters become blanks.
    tSaidLine(std::size_t plugin, nStatus::tPhase phase, bool byHostThread, std::string_view text) noexcept;

    /// Returns whether there is nothing to show.
    [[nodiscard]] bool isEmpty() const noexcept { return empty_; }

    [[nodiscard]] std::string_view view() const noexcept { return {line_.data(), size_}; }

    static constexpr std::size_t longestText = 300;  ///< in bytes

private:
    std::array<char, longestText + 100> line_{};
    std::size_t size_ = 0;
    bool empty_ = false;
};

}  // namespace nRun
