#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tool/status/statusReport.h"
#include "tool/status/statusSummary.h"

/// The drawing of dependencies beside the list of plug-ins, a row for each, in start order: a plug-in on which others
/// depend has a vertical lane, from which a branch leads to each of them.
namespace nStatus {

/// What a row shows of one lane.
struct tLane {
    std::size_t number = 0;  ///< from 0, the column
    bool through = false;    ///< a line from the row's top to its bottom
    bool fromAbove = false;  ///< a branch from the row's top to its plug-in
    bool toBelow = false;    ///< a branch from the row's plug-in to its bottom
    bool failed = false;     ///< the plug-in to which the lane belongs has not started
};

struct tLanes {
    std::size_t count = 0;                 ///< columns in use
    std::vector<std::vector<tLane>> rows;  ///< one for each plug-in
    bool complete = true;                  ///< whether there were enough columns for all dependencies
};

/// Draws as many lanes side by side as there are columns, the earlier ones first. Takes time proportional to the report
/// and the number of columns.
[[nodiscard]] tLanes drawLanes(const tReport& report, const tNames& names, std::size_t columns);

}  // namespace nStatus
