# Sourced by test.sh: the benchmarks in small. They compare what both sides give before they time them.
# shellcheck shell=bash

layer_bench() {
    local group
    for group in host ini order report status process; do
        check "what the benchmarks of $group give" ./bench.sh "$group" --quick || continue
    done
}
