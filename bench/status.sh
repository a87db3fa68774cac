# Sourced by bench.sh: replacing the status file.
# shellcheck shell=bash

bench_status() {
    on_windows status
}
