# Sourced by the commands at the root, with the root as the current directory.
# shellcheck shell=bash
set -euo pipefail

say() { printf '%s\n' "-- $*"; }
fail() {
    printf '%s\n' "error: $*" >&2
    exit 1
}

# quietly LOG COMMAND...: runs a command whose output matters only when it fails.
quietly() {
    local log=$1
    shift
    writable "$(dirname "$log")"
    "$@" >"$log" 2>&1 || {
        tail -n 40 "$log" >&2
        fail "'$1' failed; everything it said is in $log"
    }
}

# writable DIRECTORY: makes it, and says in one line when nothing can be written there.
writable() {
    { mkdir -p "$1" && printf '%s\n' "can be written" >"$1/.writable"; } 2>/dev/null ||
        fail "cannot write to $1: is the disk full, or the folder somebody else's?"
    rm -f "$1/.writable"
}
