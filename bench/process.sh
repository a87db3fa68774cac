# Sourced by bench.sh: the executable from outside.
# shellcheck shell=bash disable=SC2154 # bench.sh sets what is not set here

bench_process() {
    ./build.sh windows-bench windows_bench
    start_wine
    say "measuring process under Wine"
    pinned bench/processes "$results/process-outside.json" >"$results/process.log" 2>&1 ||
        fail "the benchmarks of process ended early; their output is in $results/process.log"
}
