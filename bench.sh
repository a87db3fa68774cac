#!/usr/bin/env bash
# Measures against peers: ./bench.sh [group ...] [--quick]
cd "$(dirname "$0")"
source scripts/common.sh
source scripts/dependencies.sh
source scripts/wine.sh

all_groups=(host ini order report status process tool)
results=build/bench
usage() {
    cat <<TXT
Usage: ./bench.sh [group ...] [--quick]

Measures the groups named, or all of them (some minutes), and prints a table: ours, the peer, their ratio, the goal.
The measurements are in $results/*.json, the table is in $results/table.md, and the plots of cost against size are in
$results/*.svg. Use an otherwise idle machine. bench/goals.txt says what each row compares. A missed goal is a failure.

  host      a whole life of the host with up to 4,000 plug-ins, against a bare loop of the same system calls
  ini       the parser, natively and under Wine, against other parsers
  order     ordering and dependency check of the descriptions
  report    raising one error, report included
  status    replacing the status file
  process   start, size, memory, idling
  tool      ziptra: check and status against reading the same files; start, size

  --quick   small sizes and few pairs, in under three minutes: results are checked, no time is judged, nothing is drawn
TXT
}

# Freed memory stays with the program, so that the first touch of each page is not part of the comparison: on a virtual
# machine it costs more than filling the page, and many times more for large blocks than for small ones.
keep_memory=glibc.malloc.mmap_max=0:glibc.malloc.trim_threshold=4000000000

# native GROUP: measures the group's native rows.
native() {
    ./build.sh native-bench native_bench
    say "measuring $1 natively"
    GLIBC_TUNABLES=$keep_memory pinned build/native-bench/bin/native_bench --benchmark_filter="^$1/" \
        --benchmark_out="$results/$1-native.json" --benchmark_out_format=json >"$results/$1-native.log" 2>&1 ||
        fail "the benchmarks of $1 ended early; their output is in $results/$1-native.log"
}

# on_windows GROUP: measures the group's rows under Wine.
on_windows() {
    ./build.sh windows-bench windows_bench
    start_wine
    say "measuring $1 under Wine"
    pinned wine build/windows-bench/bin/windows_bench.exe "$1" "$results/$1-windows.json" \
        >"$results/$1-windows.log" 2>&1 ||
        fail "the benchmarks of $1 ended early; their output is in $results/$1-windows.log"
}

# outside GROUP: measures the group's programs from outside, under Wine.
outside() {
    start_wine
    say "measuring $1 from outside"
    pinned bench/processes "$1" "$results/$1-outside.json" >"$results/$1-outside.log" 2>&1 ||
        fail "the benchmarks of $1 ended early; their output is in $results/$1-outside.log"
}

# Wine's server runs on the same core as its clients, because every system call is a round trip to it.
start_wine() {
    [[ -z ${WINEPREFIX-} ]] || return 0
    use_prefix "$results/prefix"
    make_prefix
    leave_prefix
    pinned wineserver --persistent
    # Under Wine every program that may be a service waits up to ten seconds for the control pipe of the service started
    # last, and is mistaken for that service while that one is starting. No pipe has the number below. Wine's own services
    # overwrite it while they start, so it is written until it stays.
    local -r number='HKLM\System\CurrentControlSet\Control\ServiceCurrent'
    until [[ $(pinned wine reg query "$number" /ve 2>/dev/null) == *0xf4240* ]]; do
        quietly "$results/wine.log" pinned wine reg add "$number" /ve /t REG_DWORD /d 1000000 /f
        sleep 2
    done
}

# pinned COMMAND...: runs it on one core, so that both sides of a pair find the same caches and are never moved.
pinned() { taskset --cpu-list "$(($(nproc) - 1))" "$@"; }

groups=()
while (($#)); do
    case $1 in
        -h | --help)
            usage
            exit 0
            ;;
        --quick) export BENCH_QUICK=1 ;;
        host | ini | order | report | status | process | tool) groups+=("$1") ;;
        *)
            usage >&2
            exit 2
            ;;
    esac
    shift
done
((${#groups[@]})) || groups=("${all_groups[@]}")

alone "$results"
trap leave_prefix EXIT
for group in "${groups[@]}"; do
    rm -f "$results/$group"-*.json
    # shellcheck source=/dev/null
    source "bench/$group.sh"
    "bench_$group"
done
need python3 -- python3
[[ -n ${BENCH_QUICK-} ]] || need gnuplot -- gnuplot-nox
bench/table "${groups[@]}"
