# Sourced by bench.sh: whole lives of the host.
# shellcheck shell=bash

bench_host() {
    on_windows host
}
