# Sourced by bench.sh.
# shellcheck shell=bash

bench_host() {
    say "nothing is measured for host yet"
}
