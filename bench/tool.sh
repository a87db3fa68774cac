# Sourced by bench.sh: the companion tool.
# shellcheck shell=bash disable=SC2154 # bench.sh sets what is not set here

bench_tool() {
    ./build.sh windows-bench windows_bench # also makes the library of which the native rows use copies
    native tool
    on_windows tool
    outside tool
}
