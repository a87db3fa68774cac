#pragma once

#include <cstddef>
#include <string>

namespace sweep {

/// What happened with one kind of fault.
struct tFigures {
    int runs = 1;
    int faults = 0;
    std::size_t leaks = 0;
    int hangs = 0;
    int torn = 0;
};

/// Adds to the kind's row of the table, which is printed after all tests.
void count(const std::string& kind, const tFigures& figures);

}  // namespace sweep
