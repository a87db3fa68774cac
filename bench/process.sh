# Sourced by bench.sh: the executable from outside.
# shellcheck shell=bash

bench_process() {
    ./build.sh windows-bench windows_bench
    outside process
}
