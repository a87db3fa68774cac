# Sourced by bench.sh.
# shellcheck shell=bash

bench_status() {
    say "nothing is measured for status yet"
}
