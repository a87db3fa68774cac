# Sourced by bench.sh: one error's report.
# shellcheck shell=bash

bench_report() {
    native report
    on_windows report
}
