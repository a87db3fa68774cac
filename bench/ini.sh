# Sourced by bench.sh: the INI parser.
# shellcheck shell=bash

bench_ini() {
    native ini
    on_windows ini
}
