# Sourced by bench.sh: ordering and dependency check.
# shellcheck shell=bash

bench_order() {
    native order
}
