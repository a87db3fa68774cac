# Sourced by the commands at the root, with the root as the current directory.
set -euo pipefail

say() { printf '%s\n' "-- $*"; }
fail() {
    printf '%s\n' "error: $*" >&2
    exit 1
}

# Runs a command whose output matters only when it fails: quietly LOG COMMAND...
quietly() {
    local log=$1
    shift
    mkdir -p "$(dirname "$log")"
    "$@" >"$log" 2>&1 || {
        tail -n 40 "$log" >&2
        fail "'$1' failed; everything it said is in $log"
    }
}
