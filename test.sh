#!/usr/bin/env bash
# Runs the tests: ./test.sh [layer...] [--long SECONDS]
cd "$(dirname "$0")" || exit
source scripts/common.sh
source scripts/dependencies.sh
source scripts/search.sh

default_layers=(lint unit replay sweep endtoend catalogues endurance sdk)
all_layers=("${default_layers[@]}" peers tidy race coverage fuzz bench package)
results=build/test
search_options=(20)
usage() {
    cat <<TXT
Usage: ./test.sh [layer...] [--long SECONDS]

Runs the layers named, or: ${default_layers[*]}.
The last line is the sum: N passed, N failed, N skipped. What each program printed is in $results/*.xml (JUnit);
\`ctest --preset PRESET -R NAME\` runs one of them again.

  lint       format, project rules, and what the executables import
  unit       natively under the sanitizers, and on Windows (here: under Wine)
  replay     every fuzzer's code over the inputs that are known
  sweep      every system call and every allocation fails in turn (SWEEP_ALL=1: at every occurrence)
  endtoend   the executable itself: console, service control manager, registry, plug-ins, status file
  catalogues what \`ziptra check\` predicts of random plug-in directories is what the host does with them
             (CATALOGUES directories: 60, or 2,000 in \`all\`; from the seed CATALOGUE_SEED)
  endurance  plug-ins and service started over and over, killed at every step of a write, raced by stop requests
             (SOAK_CYCLES, SOAK_SECONDS, KILLS, RACE_SECONDS make it longer)
  sdk        authors' projects in C, C++ and Rust, built, checked and run with nothing but the installed SDK
  peers      other programs accept what \`ziptra\` writes (JSON schemas, promtool, Graphviz, a browser), objdump sees the
             same in every library, and a real Prometheus raises the alerts of packaging/fleet
  tidy       static analysis by clang-tidy
  race       stop requests from many threads under the thread sanitizer (RACE_ROUNDS)
  coverage   lines and branches of the product that the unit tests reach, with floors
  bench      small benchmarks: their results are checked, not their times
  package    two builds of the package are equal, its tables and its bill of materials are right, and the MSI installs,
             upgrades and removes under Wine (needs root)
  fuzz       every fuzzer searches for new inputs, ${search_options[0]} seconds each
  default    those that run when none is named
  all        all of these

  --long SECONDS   let each fuzzer search so long, and keep the inputs that reach something new in tests/fuzz/corpus
TXT
}

misused() {
    usage >&2
    exit 2
}

# record LAYER NAME COMMAND...: a step that counts as one test of that layer.
record() {
    local layer=$1 name=$2 log="$results/$2.log" began=$SECONDS outcome=passed
    shift 2
    printf '%s' "-- $name ... "
    ("$@") </dev/null >"$log" 2>&1 || outcome=failed
    printf '%s\n' "$outcome, $((SECONDS - began)) s"
    printf '%s\t%s\t%s\t%d\n' "$layer" "$name" "$outcome" $((SECONDS - began)) >>"$results/steps"
    [[ $outcome == passed ]] || {
        tail -n 60 "$log"
        return 1
    }
}

# run JOBS PRESET LABEL...: the tests of that build which have one of these labels.
run() {
    local jobs=$1 preset=$2 labels
    shift 2
    (($#)) || return 0
    labels=$(IFS='|' && printf '%s' "$*")
    printf '%s\n' "$@" >"$results/$preset.labels"
    ctest --preset "$preset" --show-only=json-v1 >"$results/$preset.json"
    # What failed, and what never ran, is counted from the file that is written here.
    ctest --preset "$preset" --parallel "$jobs" --label-regex "^($labels)\$" \
        --output-junit "$PWD/$results/$preset.xml" || true
}

# skip_unmeasured NAME: a row of the benchmarks whose peer is not installed compares nothing; it is a skipped test.
skip_unmeasured() {
    local row
    sed -nE 's/ +(none|[<>]= .*) +(not measured.*)$/: \2/p' "$results/$1.log" | while read -r row; do
        printf '%s\n' "   skipped: $row"
        printf '%s\t%s\tskipped\t0\n' bench "$row" >>"$results/steps"
    done
}

wanted() { [[ " ${layers[*]} " == *" $1 "* ]]; }

# chosen LAYER...: those of them that were asked for.
chosen() {
    local layer
    for layer in "$@"; do
        ! wanted "$layer" || printf '%s\n' "$layer"
    done
}

layers=()
while (($#)); do
    case $1 in
        -h | --help)
            usage
            exit 0
            ;;
        default) layers+=("${default_layers[@]}") ;;
        all)
            layers+=("${all_layers[@]}")
            export CATALOGUES=${CATALOGUES:-2000}
            ;;
        lint | tidy | unit | replay | sweep | endtoend | catalogues | endurance | sdk | peers | race | coverage | fuzz | \
            bench | package)
            layers+=("$1")
            ;;
        --long)
            [[ ${2-} =~ ^[1-9][0-9]{0,6}$ ]] || misused
            search_options=("$2" --keep)
            shift
            ;;
        *) misused ;;
    esac
    shift
done
((${#layers[@]})) || layers=("${default_layers[@]}")

alone "$results"
rm -f "$results"/*.{xml,json,log,labels} "$results/steps"
touch "$results/steps"
need_python

! wanted lint || need_linters
if wanted tidy; then
    need_clang_tidy
    for build in windows-release native-bench windows-bench; do
        record builds "configure $build" ./build.sh "$build" build.ninja || true
    done
fi
if wanted peers; then
    need_wine
    need_peers
    need_clang
    need_rust
fi
mapfile -t native < <(chosen lint tidy unit replay sweep peers)
mapfile -t windows < <(chosen lint unit replay sweep endtoend catalogues sdk peers endurance)
if ((${#native[@]})); then
    record builds native-asan ./build.sh native-asan && run 2 native-asan "${native[@]}"
fi
if wanted sdk; then
    need_rust
    ((${#native[@]})) || record builds native-asan ./build.sh native-asan ziptra
fi
if ((${#windows[@]})); then
    need_wine
    record builds windows-release ./build.sh windows-release && run 3 windows-release "${windows[@]}"
fi
if wanted race; then
    record builds native-tsan ./build.sh native-tsan thread_tests && run 1 native-tsan race
fi
if wanted coverage; then
    for build in native-coverage windows-coverage; do
        programs=(unit_tests trace_tests sweep_tests)
        # Building the tool's tests for Windows once more would take longer than all the rest.
        case $build in
            native-coverage) programs+=(tool_tests) ;;
            windows-coverage) programs+=(sdk_tests) ;;
        esac
        find "build/$build" -name '*.gcda' -delete 2>/dev/null || true
        record builds "$build" ./build.sh "$build" "${programs[@]}" && run 2 "$build" unit sweep
    done
    record coverage "floors and exceptions" scripts/coverage \
        build/native-coverage=gcov build/windows-coverage=x86_64-w64-mingw32-gcov-posix &&
        sed 's/^/   /' "$results/floors and exceptions.log"
fi
if wanted fuzz; then
    record builds native-fuzz ./build.sh native-fuzz && search "${search_options[@]}"
fi
if wanted bench; then
    for group in host ini order report status process tool; do
        record bench "bench $group" ./bench.sh "$group" --quick || continue
        skip_unmeasured "bench $group"
    done
fi
if wanted package; then
    need_wine
    need_packaging
    if record package "package twice" tests/packaging/twice; then
        record package "package contents" tests/packaging/contents build/test/package/first || true
        record package "package life" tests/packaging/life || true
    fi
    record package "package refusals" tests/packaging/refusals || true
fi
scripts/results "$results"
