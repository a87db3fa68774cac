#include "bench/pairs_win32.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <vector>

namespace nBench {
namespace {

/// With fewer than 21, five percent cannot be told from noise.
int numberOfPairs() { return quick() ? 3 : 21; }

std::vector<tTimedRow>& rows() {
    static std::vector<tTimedRow> all;
    return all;
}

/// Returns what measures one pair. The two sides take turns in being first.
std::function<tTimes()> inTurns(const tPair& pair) {
    return [pair, oursFirst = false]() mutable {
        oursFirst = !oursFirst;
        pair.reset();
        const double first = seconds(oursFirst ? pair.ours : pair.peer);
        pair.reset();
        const double second = seconds(oursFirst ? pair.peer : pair.ours);
        return oursFirst ? tTimes{first, second} : tTimes{second, first};
    };
}

std::string quoted(std::string text) {
    std::replace(text.begin(), text.end(), '"', '\'');
    std::replace(text.begin(), text.end(), '\\', '/');
    return '"' + text + '"';
}

std::string start(const tTimedRow& row) {
    return "{\"name\": " + quoted(row.name + "/" + std::to_string(row.size)) + ", \"label\": " + quoted(row.axis) +
           ", \"size\": " + std::to_string(row.size);
}

/// Returns one JSON object per pair, or one with the error.
std::vector<std::string> measure(const tTimedRow& row) try {
    const std::function<tTimes()> pair = row.prepare();
    std::vector<std::string> objects;
    for (int i = 0; i < numberOfPairs(); ++i) {
        const tTimes times = pair();
        objects.push_back(start(row) + ", \"ours\": " + std::to_string(times.ours * 1e9) +
                          "e-9, \"peer\": " + std::to_string(times.peer * 1e9) + "e-9}");
    }
    return objects;
} catch (const std::exception& failure) {
    return {start(row) + ", \"error_message\": " + quoted(failure.what()) + "}"};
}

}  // namespace

double seconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void addRow(const tRow& row) {
    addTimedRow({row.name, row.axis, row.size, [prepare = row.prepare] { return inTurns(prepare()); }});
}

void addTimedRow(const tTimedRow& row) { rows().push_back(row); }

void runRows(const std::string& group, const std::string& file) {
    std::string all;
    for (const tTimedRow& row : rows()) {
        if (!row.name.starts_with(group + "/")) continue;
        std::printf("%s/%lld\n", row.name.c_str(), static_cast<long long>(row.size));
        std::fflush(stdout);
        for (const std::string& object : measure(row)) all += (all.empty() ? "" : ",\n") + object;
    }
    std::ofstream(file) << "{\"benchmarks\": [\n" << all << "\n]}\n";
}

}  // namespace nBench
