// The benchmarks on Windows: windows_bench GROUP FILE. ./bench.sh builds, runs and judges them.
#include <cstdio>

#include "bench/groups.h"
#include "bench/pairs_win32.h"

int main(int count, char** arguments) {
    if (count != 3) {
        std::fputs("Usage: windows_bench GROUP FILE\n", stderr);
        return 2;
    }
    addHostRows();
    addDescriptionFileRows();
    addStatusRows();
    nBench::runRows(arguments[1], arguments[2]);
    return 0;
}
