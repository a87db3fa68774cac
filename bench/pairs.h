#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// What all benchmarks share. A row of the table compares our code with a peer's. The two take turns: what disturbs the
/// machine for a while disturbs both sides of a pair, and their ratio remains.
namespace nBench {

/// The two sides of a comparison. Each call repeats the same work.
struct tPair {
    std::function<void()> ours;
    std::function<void()> peer;
    std::function<void()> reset = [] {};  ///< called before each side's turn, not timed
};

/// Makes the input and both sides, and compares their results. Throws std::runtime_error, for example through `demand`,
/// if they differ: nothing is timed then. Called when it is the row's turn; the pair is destroyed after the row.
using tPrepare = std::function<tPair()>;

struct tRow {
    std::string name;  ///< "group/measure", as in goals.txt
    std::string axis;  ///< what `size` counts ("keys"): rows with the same axis share a plot. Empty for no plot
    std::int64_t size;
    tPrepare prepare;
};

/// Call before the benchmarks run.
void addRow(const tRow& row);

/// Returns whether only results matter: then there are few pairs and small sizes.
[[nodiscard]] bool quick();

/// Throws std::runtime_error with the text if the condition is false; the table shows the text.
void demand(bool condition, std::string_view text);

/// Returns a function that does the work that many times, for work too short to be timed alone.
[[nodiscard]] std::function<void()> repeat(int times, const std::function<void()>& work);

}  // namespace nBench
