# Sourced by test.sh: every fuzzer for a while, two at a time. Each is one test.
# shellcheck shell=bash

# Prints each fuzzer's own counts: executions, edges of the product's code, and the finer "features".
table_of_fuzzers() {
    awk '
        FNR == 1 { name = FILENAME; sub(".*/", "", name); runs = edges = features = 0 }
        /^stat::number_of_executed_units:/ { runs = $2 }
        / cov: [0-9]+ ft: [0-9]+ / {
            for (i = 1; i < NF; ++i) {
                if ($i == "cov:") edges = $(i + 1)
                if ($i == "ft:") features = $(i + 1)
            }
        }
        /^exit code / {
            found = $3 != 0
            printf "   %-20s %12d %8d %9d %9d\n", name, runs, edges, features, found
            all_runs += runs; all_edges += edges; all_features += features; all_found += found
        }
        BEGIN { printf "   %-20s %12s %8s %9s %9s\n", "fuzzer", "executions", "edges", "features", "findings" }
        END { printf "   %-20s %12d %8d %9d %9d\n", "all", all_runs, all_edges, all_features, all_found }
    ' "${@/#/build/native-fuzz/logs/}"
}

# search SECONDS [--keep]
search() {
    local names name outcome
    names=(tests/fuzz/*_fuzz.cpp)
    names=("${names[@]##*/}")
    names=("${names[@]%_fuzz.cpp}")
    say "${#names[@]} fuzzers, two at a time, $1 seconds each"
    rm -rf build/native-fuzz/logs
    printf '%s\n' "${names[@]}" | xargs -I '{}' -P 2 scripts/fuzz '{}' "$@"
    for name in "${names[@]}"; do
        outcome=passed
        grep -qx 'exit code 0' "build/native-fuzz/logs/$name" || {
            outcome=failed
            say "$name found a fault:"
            tail -n 40 "build/native-fuzz/logs/$name"
        }
        printf 'fuzz\tfuzz %s\t%s\t%d\n' "$name" "$outcome" "$1" >>"${results:?}/steps"
    done
    table_of_fuzzers "${names[@]}"
}
