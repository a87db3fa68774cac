#include "tool/status/statusLanes.h"

#include <algorithm>
#include <limits>

namespace nStatus {
namespace {

constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

/// The rows that a plug-in's lane connects: its own and those of the plug-ins that depend on it.
struct tSpan {
    std::size_t owner = 0;
    std::size_t first = 0;
    std::size_t last = 0;
    std::size_t column = nowhere;

    [[nodiscard]] bool isNeeded() const { return first != last; }
};

/// The owners of the lanes that a row's plug-in is connected to, each once.
using tConnections = std::vector<std::vector<std::size_t>>;

tConnections connect(const tReport& report, const tNames& names) {
    tConnections connections(report.plugins.size());
    for (std::size_t row = 0; row < connections.size(); ++row) {
        std::vector<std::size_t>& owners = connections[row];
        for (const std::string_view dependency : report.plugins[row].dependencies) {
            const auto owner = names.meant(dependency, row);
            if (owner && *owner != row) owners.push_back(*owner);
        }
        std::sort(owners.begin(), owners.end());
        owners.erase(std::unique(owners.begin(), owners.end()), owners.end());
    }
    return connections;
}

std::vector<tSpan> findSpans(const tConnections& connections) {
    std::vector<tSpan> spans(connections.size());
    for (std::size_t row = 0; row < spans.size(); ++row) spans[row] = {row, row, row};
    for (std::size_t row = 0; row < connections.size(); ++row) {
        for (const std::size_t owner : connections[row]) {
            spans[owner].first = std::min(spans[owner].first, row);
            spans[owner].last = std::max(spans[owner].last, row);
        }
    }
    return spans;
}

/// Gives each span a column that is free in all of its rows, if there is one. A column is free again in the row after a
/// span's last.
void placeSpans(std::vector<tSpan>& spans, std::size_t columns, tLanes& lanes) {
    std::vector<tSpan*> inOrder;
    for (tSpan& span : spans) {
        if (span.isNeeded()) inOrder.push_back(&span);
    }
    std::stable_sort(inOrder.begin(), inOrder.end(), [](auto* a, auto* b) { return a->first < b->first; });
    std::vector<std::size_t> freeFrom(columns, 0);
    for (tSpan* const span : inOrder) {
        const auto column =
            std::find_if(freeFrom.begin(), freeFrom.end(), [&](auto row) { return row <= span->first; });
        if (column == freeFrom.end()) {
            lanes.complete = false;
            continue;
        }
        *column = span->last + 1;
        span->column = static_cast<std::size_t>(column - freeFrom.begin());
        lanes.count = std::max(lanes.count, span->column + 1);
    }
}

bool isFailed(const tPlugin& plugin) {
    const tCall* const start = findCall(plugin, tPhase::initialize);
    return start != nullptr && start->code < 0;
}

/// Draws the lane into the rows between its ends; those to which it is connected are changed below.
void drawLine(const tSpan& span, bool failed, tLanes& lanes) {
    for (std::size_t row = span.first; row <= span.last; ++row) {
        const bool inside = row != span.first && row != span.last;
        lanes.rows[row].push_back({span.column, inside && row != span.owner, false, false, failed});
    }
}

tLane& laneIn(std::vector<tLane>& row, std::size_t column) {
    return *std::find_if(row.begin(), row.end(), [&](const tLane& lane) { return lane.number == column; });
}

}  // namespace

tLanes drawLanes(const tReport& report, const tNames& names, std::size_t columns) {
    tLanes lanes;
    lanes.rows.resize(report.plugins.size());
    const tConnections connections = connect(report, names);
    std::vector<tSpan> spans = findSpans(connections);
    placeSpans(spans, columns, lanes);
    for (const tSpan& span : spans) {
        if (span.column == nowhere) continue;
        drawLine(span, isFailed(report.plugins[span.owner]), lanes);
        tLane& own = laneIn(lanes.rows[span.owner], span.column);
        own.fromAbove = span.first < span.owner;
        own.toBelow = span.last > span.owner;
    }
    for (std::size_t row = 0; row < connections.size(); ++row) {
        for (const std::size_t owner : connections[row]) {
            if (spans[owner].column == nowhere) continue;
            tLane& lane = laneIn(lanes.rows[row], spans[owner].column);
            (owner < row ? lane.fromAbove : lane.toBelow) = true;
        }
    }
    return lanes;
}

}  // namespace nStatus
