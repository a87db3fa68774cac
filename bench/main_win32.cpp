// The benchmarks on Windows. ./bench.sh builds and runs this, and judges the results.
//   windows_bench GROUP FILE     measures the group
//   windows_bench stage COUNT    makes that many plug-ins, which the host will find
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "bench/groups.h"
#include "bench/hostStage_win32.h"
#include "bench/pairs_win32.h"

int main(int count, char** arguments) {
    if (count != 3) {
        std::fputs("Usage: windows_bench GROUP FILE | stage COUNT\n", stderr);
        return 2;
    }
    if (std::string_view(arguments[1]) == "stage") {
        stageHost(tDescriptions(std::atoi(arguments[2])));
        return 0;
    }
    addHostRows();
    addDescriptionFileRows();
    addStatusRows();
    addReportRows("wine-");
    addToolRows("wine-");
    nBench::runRows(arguments[1], arguments[2]);
    return 0;
}
