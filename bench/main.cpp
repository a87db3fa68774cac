// The native benchmarks. ./bench.sh builds and runs this, and judges the results.
#include <benchmark/benchmark.h>

#include "bench/groups.h"

int main(int count, char** arguments) {
    addIniRows();
    addOrderRows();
    addReportRows("");
    addToolRows("");
    addToolStartRows();
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
