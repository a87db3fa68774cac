#pragma once

#include <functional>
#include <string>

#include "bench/pairs.h"

/// Replaces Google Benchmark on Windows: rows are measured in the same way and written in the same format.
namespace nBench {

/// The measurements of one pair, in seconds.
struct tTimes {
    double ours;
    double peer;
};

/// Returns how long the work takes.
[[nodiscard]] double seconds(const std::function<void()>& work);

/// A row that measures itself: `prepare` checks the results and returns a function that measures one pair.
struct tTimedRow {
    std::string name;
    std::string axis;
    std::int64_t size;
    std::function<std::function<tTimes()>()> prepare;
};
void addTimedRow(const tTimedRow& row);

/// Runs the group's rows and writes their measurements and errors to the file.
void runRows(const std::string& group, const std::string& file);

}  // namespace nBench
