# Sourced by tests/sdk/run: what is expected, and what is said if it is not so. Needs common.sh.
# shellcheck shell=bash

expect_equal() { [[ $1 == "$2" ]] || fail "expected: $2"$'\n'"but it is: $1"; }

# expect_silence COMMAND...: it succeeds and prints nothing.
expect_silence() {
    local output
    if ! output=$("$@" 2>&1) || [[ -n $output ]]; then fail "$*"$'\n'"$output"; fi
}

# The names that a library exports, sorted.
exports() {
    x86_64-w64-mingw32-objdump -p "$1" | sed -n '/^\[Ordinal\/Name Pointer\]/,/^$/s/^\t\[.*\] //p' | sort | paste -sd ' '
}

expect_contains() { [[ $1 == *"$2"* ]] || fail "expected: $2"$'\n'"in: $1"; }

# expect_failure TEXT COMMAND...: it fails and prints the text.
expect_failure() {
    local text=$1 output
    shift
    ! output=$("$@" 2>&1) || fail "it succeeds, but should fail with: $text"
    expect_contains "$output" "$text"
}

# The version and the original file name of a library's version resource.
version() {
    x86_64-w64-mingw32-windres -O rc -i "$1" |
        sed -nE 's/^ *VALUE "(FileVersion|OriginalFilename)", "(.*)"/\2/p' | paste -sd ' '
}

# The path of a folder as Windows sees it.
windows() { printf '%s' "Z:${1//\//\\}"; }

# description NAME FOLDER DEPENDENCIES REQUIRES ENTRY...: what it should be, for a library in this folder.
description() {
    local name=$1 folder dependencies=$3 requires=$4 entry
    folder=$(windows "$2")
    shift 4
    printf '%s\n' '[Service]' "Name=$name"
    [[ -z $dependencies ]] || printf '%s\n' "Dependencies=$dependencies"
    printf '%s\n' "Requires=$requires" "Path=$folder\\$name.dll"
    for entry in "$@"; do printf '%s\n' "$entry=$name$entry"; done
}
