# Sourced by the commands at the root, with the root as the current directory.
# shellcheck shell=bash
set -euo pipefail

# The temporary files of compilers, tests and Wine stay in this folder, too.
export TMPDIR=$PWD/build/tmp
mkdir -p "$TMPDIR" 2>/dev/null || true # commands that need it report that nothing can be written

say() { printf '%s\n' "-- $*"; }
fail() {
    printf '%s\n' "error: $*" >&2
    exit 1
}

# quietly LOG COMMAND...: runs a command and shows its output only if it fails.
quietly() {
    local log=$1 folder
    folder=$(dirname "$log")
    shift
    writable "$folder"
    "$@" >"$log" 2>&1 || {
        ! grep -q 'No space left on device' "$log" || disk_full "$folder"
        writable "$folder"
        tail -n 40 "$log" >&2
        fail "'$1' failed; its output is in $log"
    }
}

disk_full() { fail "no space left for $1: free some and try again"; }

# writable FOLDER: creates the folder, or fails with a one-line message if nothing can be written there.
writable() {
    { mkdir -p "$1" && touch "$1/.writable"; } 2>/dev/null || fail "cannot write to $1: does it belong to another user?"
    head -c 65536 /dev/zero >"$1/.writable" 2>/dev/null || disk_full "$1"
    rm -f "$1/.writable"
}

# alone FOLDER: fails if another command is running there. The lock is released when the last process that has it ends.
alone() {
    writable "$1"
    exec 9>"$1/lock"
    flock --nonblock 9 || fail "another $0 is running here (if it was killed, end its remaining processes with:" \
        "WINEPREFIX=$PWD/$1/prefix wineserver --kill)"
}
