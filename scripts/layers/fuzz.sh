# Sourced by test.sh: every fuzzer for a while, two at a time. Each is one test.
# shellcheck shell=bash disable=SC2154 # test.sh sets what is not set here

# What a fuzzer has said, and whether it found nothing.
verdict_of_fuzzer() {
    tail -n 40 "build/native-fuzz/logs/$1" && grep -qx 'exit code 0' "build/native-fuzz/logs/$1"
}

# What a long run has found that the committed inputs do not reach is added to them.
keep_found() { "build/native-fuzz/bin/$1_fuzz" -merge=1 "fuzz/corpus/$1" "build/native-fuzz/found/$1"; }

layer_fuzz() {
    check "the build native-fuzz" ./build.sh native-fuzz || return
    local names name
    mapfile -t names < <(cd build/native-fuzz/bin && printf '%s\n' *_fuzz | sed 's/_fuzz$//')
    say "${#names[@]} fuzzers, two at a time, $fuzz_seconds seconds each"
    rm -rf build/native-fuzz/logs
    printf '%s\n' "${names[@]}" | xargs -I '{}' -P 2 scripts/fuzz '{}' "$fuzz_seconds"
    for name in "${names[@]}"; do
        check "fuzz $name" verdict_of_fuzzer "$name" || continue
        ((!fuzz_keeps)) || check "keep what $name has found" keep_found "$name"
    done
}
