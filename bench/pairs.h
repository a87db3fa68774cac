#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// What all native benchmarks share. A row of the table compares two programs, ours and a peer's, which are run in
/// turn: what disturbs the machine for a while disturbs both, and their ratio stays.
namespace nBench {

/// The two sides of a comparison. Each call does the same work once more.
struct tPair {
    std::function<void()> ours;
    std::function<void()> peer;
    std::function<void()> reset = [] {};  ///< before each side's turn, and not timed
};

/// Makes the input and both sides, and compares what they give. Throws std::runtime_error, or calls `demand`, when that
/// is not the same: then nothing is timed. Runs when the row's turn has come; what it holds is freed after the row.
using tPrepare = std::function<tPair()>;

struct tRow {
    std::string name;  ///< "group/measure", as in goals.txt
    std::string axis;  ///< what `size` counts ("keys"): the rows of one axis make one plot. Empty for no plot
    std::int64_t size;
    tPrepare prepare;
};

/// To be called before the benchmarks run.
void addRow(const tRow& row);

/// A quick run is about results: few pairs, small sizes. Known before any row is added.
[[nodiscard]] bool quick();

/// Throws when something that must hold does not; the row then shows the text.
void demand(bool truth, const std::string& text);

/// Work too short to be timed alone is done this often by both sides.
[[nodiscard]] std::function<void()> repeat(int times, const std::function<void()>& work);

}  // namespace nBench
