#include "tests/sweep/figures.h"

#include <gtest/gtest.h>

#include <iostream>
#include <map>

namespace sweep {
namespace {

std::map<std::string, tFigures>& rows() {
    static std::map<std::string, tFigures> rows;
    return rows;
}

/// Prints the lines that test.sh turns into a table.
class tPrintAtTheEnd : public testing::Environment {
    void TearDown() override {
        for (const auto& [kind, seen] : rows()) {
            const std::string start = "FIGURE " + kind + ", ";
            std::cout << start << "faults: " << seen.faults << '\n'
                      << start << "runs: " << seen.runs << '\n'
                      << start << "leaks, hangs and torn files: "
                      << seen.leaks + static_cast<std::size_t>(seen.hangs + seen.torn) << std::endl;
        }
    }
};

[[maybe_unused]] const testing::Environment* const printing = testing::AddGlobalTestEnvironment(new tPrintAtTheEnd);

}  // namespace

void count(const std::string& kind, const tFigures& figures) {
    tFigures& row = rows().try_emplace(kind, tFigures{.runs = 0}).first->second;
    row.runs += figures.runs;
    row.faults += figures.faults;
    row.leaks += figures.leaks;
    row.hangs += figures.hangs;
    row.torn += figures.torn;
}

}  // namespace sweep
