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
    local log=$1 folder
    folder=$(dirname "$log")
    shift
    writable "$folder"
    "$@" >"$log" 2>&1 || {
        ! grep -q 'No space left on device' "$log" || disk_full "$folder"
        writable "$folder"
        tail -n 40 "$log" >&2
        fail "'$1' failed; everything it said is in $log"
    }
}

disk_full() { fail "no room left for $1: make some and try again"; }

# writable FOLDER: makes it, and says in one line when nothing can be written there.
writable() {
    { mkdir -p "$1" && touch "$1/.writable"; } 2>/dev/null || fail "cannot write to $1: does it belong to another user?"
    head -c 65536 /dev/zero >"$1/.writable" 2>/dev/null || disk_full "$1"
    rm -f "$1/.writable"
}

# alone FOLDER: ends this command if another one is at work there. The lock goes with the last process that has it.
alone() {
    writable "$1"
    exec 9>"$1/lock"
    flock --nonblock 9 || fail "another $0 is at work here (if it was killed, what is left of it ends by:" \
        "WINEPREFIX=$PWD/$1/prefix wineserver --kill)"
}
