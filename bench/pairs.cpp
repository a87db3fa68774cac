#include "bench/pairs.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <stdexcept>

namespace nBench {
namespace {

/// With fewer than 21, five percent cannot be told from noise.
int numberOfPairs() { return quick() ? 3 : 21; }

double seconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Measures one pair of a row per repetition of the library's.
class tRowRun {
public:
    explicit tRowRun(tRow row) : row_(std::move(row)) {}

    void operator()(benchmark::State& state) {
        try {
            if (done_ == 0) pair_ = row_.prepare();
            demand(failure_.empty(), failure_);
            for ([[maybe_unused]] auto iteration : state) runPair(state);
        } catch (const std::exception& failure) {
            failure_ = failure.what();
            state.SkipWithError(failure.what());
        }
        if (++done_ == numberOfPairs()) pair_ = {};
    }

private:
    /// The two sides take turns in being first.
    void runPair(benchmark::State& state) {
        const bool oursFirst = done_ % 2 == 0;
        pair_.reset();
        const double first = seconds(oursFirst ? pair_.ours : pair_.peer);
        pair_.reset();
        const double second = seconds(oursFirst ? pair_.peer : pair_.ours);
        state.SetIterationTime(first + second);
        state.counters["ours"] = oursFirst ? first : second;
        state.counters["peer"] = oursFirst ? second : first;
        state.counters["size"] = static_cast<double>(row_.size);
        state.SetLabel(row_.axis);
    }

    tRow row_;
    tPair pair_;
    std::string failure_;
    int done_ = 0;
};

}  // namespace

void addRow(const tRow& row) {
    const auto run = std::make_shared<tRowRun>(row);
    benchmark::RegisterBenchmark((row.name + "/" + std::to_string(row.size)).c_str(),
                                 [run](benchmark::State& state) { (*run)(state); })
        ->Iterations(1)
        ->Repetitions(numberOfPairs())
        ->UseManualTime();
}

}  // namespace nBench
