#!/usr/bin/env bash
# Runs the tests: ./test.sh [layer ...] [--long SECONDS]
cd "$(dirname "$0")"
source scripts/common.sh
source scripts/dependencies.sh
source scripts/wine.sh
source scripts/results.sh

all_layers=(lint native windows endtoend fuzz sweep soak kill race bench)
export fuzz_seconds=20 fuzz_keeps=0
usage() {
    cat <<TXT
Usage: ./test.sh [layer ...] [--long SECONDS]

Runs the layers named; without a name all but coverage, and with "all" that too. What the programs say is kept in $logs.
The last line is the sum: N passed, N failed, N skipped.

  lint       format, static analysis, the house rules
  native     the portable core's unit tests under the sanitizers
  windows    the Windows build: its headers, its bytes, and the unit tests under Wine
  endtoend   the executable itself: console, service control manager, registry, plug-ins, status file
  fuzz       every fuzzer for $fuzz_seconds seconds
  sweep      every system call and every allocation fails in turn (SWEEP_ALL=1: at every occurrence)
  soak       the plug-ins loaded and unloaded SOAK_CYCLES times (500), the service started for SOAK_SECONDS (15)
  kill       the executable killed KILLS times (55) step by step of replacing the status file, and as often at random
  race       stop requests from many sides: every interleaving, RACE_ROUNDS in one process, RACE_SECONDS (18) outside
  bench      the benchmarks in small: their results, not their times
  coverage   lines and branches of the product that the unit tests reach, natively and on Windows, with floors

  --long SECONDS   let each fuzzer run so long, and keep the inputs that reach something new in tests/fuzz/corpus
TXT
}

misused() {
    usage >&2
    exit 2
}

run_layer() {
    local layer=$1 began=$SECONDS
    say "layer $layer"
    passed=0 failed=0 skipped=0
    # shellcheck source=/dev/null
    source "scripts/layers/$layer.sh"
    # A layer that ends early has counted what ended it.
    "layer_$layer" || true
    rows+=("$(printf '%-11s %6d %6d %6d %7d %7d' "$layer" $((passed + failed + skipped)) \
        "$passed" "$failed" "$skipped" $((SECONDS - began)))")
    all_passed=$((all_passed + passed))
    all_failed=$((all_failed + failed))
    all_skipped=$((all_skipped + skipped))
}

layers=()
while (($#)); do
    case $1 in
        -h | --help)
            usage
            exit 0
            ;;
        --long)
            [[ ${2-} =~ ^[1-9][0-9]{0,6}$ ]] || misused
            fuzz_seconds=$2 fuzz_keeps=1
            shift
            ;;
        all) layers+=("${all_layers[@]}" coverage) ;;
        lint | native | windows | endtoend | fuzz | sweep | soak | kill | race | bench | coverage) layers+=("$1") ;;
        *) misused ;;
    esac
    shift
done
((${#layers[@]})) || layers=("${all_layers[@]}")

trap leave_prefix EXIT
trap 'exit 130' INT TERM
alone build/test
writable "$logs"
: >"$counted"
rows=() all_passed=0 all_failed=0 all_skipped=0
for layer in "${layers[@]}"; do
    run_layer "$layer"
done

summary
printf '\n%-11s %6s %6s %6s %7s %7s\n' layer ran passed failed skipped seconds
printf '%s\n' "${rows[@]}"
printf '\n%s\n' "$all_passed passed, $all_failed failed, $all_skipped skipped"
((all_failed == 0))
