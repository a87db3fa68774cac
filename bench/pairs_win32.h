#pragma once

#include <functional>
#include <string>

#include "bench/pairs.h"

/// What Windows has in place of Google Benchmark: the rows are measured the same way and written in the same form.
namespace nBench {

/// What one pair has measured, in seconds.
struct tTimes {
    double ours;
    double peer;
};

[[nodiscard]] double seconds(const std::function<void()>& work);

/// A row that takes its times itself; `prepare` checks results and gives what measures one pair.
struct tTimedRow {
    std::string name;
    std::string axis;
    std::int64_t size;
    std::function<std::function<tTimes()>()> prepare;
};
void addTimedRow(const tTimedRow& row);

/// Runs the rows of the group and writes the file. It tells of wrong results as well.
void runRows(const std::string& group, const std::string& file);

}  // namespace nBench
