# Sourced by test.sh: the benchmarks with small sizes. They compare the results of both sides before they time them.
# shellcheck shell=bash disable=SC2154 # test.sh sets what is not set here

# A row whose peer is not installed compares nothing: it is a skipped test.
skip_unmeasured() {
    local rows
    rows=$(sed -nE 's/^[0-9]+ rows: (.*, )?([0-9]+) not measured.*/\2/p' "$1")
    [[ -n $rows ]] || return 0
    skipped=$((skipped + rows))
    sed -nE 's/ +(none|[<>]= .*) +(not measured.*)$/: \2/p' "$1" | sed 's/^/   skipped: /'
}

layer_bench() {
    local group name
    for group in host ini order report status process; do
        name="the results of the benchmarks of $group"
        check "$name" ./bench.sh "$group" --quick || continue
        skip_unmeasured "$logs/${name// /-}.log"
    done
}
