#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// One meaning of a code: a place at which the host raises an error, or what a plug-in's call returned or threw.
struct tCode {
    std::int32_t code;         ///< 0 for any negative code of a plug-in's own
    std::string_view file;     ///< as in the error's report; empty if the code comes from a plug-in's exception
    int line;                  ///< as in the error's report; 0 if there is no file
    std::string_view meaning;  ///< what went wrong, without a final stop
    std::string_view shownAs;  ///< where an administrator sees it: nCodes::inCodeLine or another place
    std::string_view remedy;   ///< what to do, without a final stop
};

/// The table of the host's codes, from which `explain` and docs/codes.md are made. The texts are Markdown without
/// vertical bars: names are between backticks.
namespace nCodes {

/// What tCode::shownAs is if the code itself is shown, in the status file's lines of a plug-in.
inline constexpr std::string_view inCodeLine = "the plug-in's `Code:` line";

/// The host's codes are from here to -52000; plug-ins must not use them for results of their own.
inline constexpr std::int32_t firstReserved = -52999;
inline constexpr std::int32_t lastReserved = -52000;

/// Sorted by code, descending, then by file and line; a plug-in's own code comes last.
[[nodiscard]] std::span<const tCode> all() noexcept;

/// Returns every meaning of a code, those of a plug-in's `Code:` line first. A negative code that is not among the
/// host's may be a plug-in's own, whatever else it means. Empty if the code is not negative, and for codes of the host
/// that it never raises.
[[nodiscard]] std::vector<const tCode*> find(std::int32_t code);

}  // namespace nCodes
