# Sourced by test.sh: counts what ran. Needs common.sh.
# shellcheck shell=bash

passed=0 failed=0 skipped=0
logs=build/test/logs
counted=build/test/counted # what every program has counted in this run: name, tab, number

# verdict FAILED TEXT LOG: ends the line that a test began.
verdict() {
    if (($1 == 0)); then
        printf '%s\n' "passed: $2"
    else
        printf '%s\n' "FAILED: $2; everything it said: $3"
        return 1
    fi
}

# check NAME COMMAND...: one test. What the command says is shown only when it fails. (In a function that is checked, the
# steps are chained by &&: what fails on its way would go unnoticed otherwise.)
check() {
    local log="$logs/${1//[^A-Za-z0-9]/-}.log" began=$SECONDS code=0
    printf '%s' "   $1 ... "
    ("${@:2}") </dev/null >"$log" 2>&1 || code=1
    passed=$((passed + 1 - code)) failed=$((failed + code))
    verdict "$code" "$((SECONDS - began)) s" "$log" || {
        tail -n 60 "$log"
        return 1
    }
}

# occurrences PATTERN LOG: how many lines hold it.
occurrences() { grep -cE "$1" "$2" || true; }

# googletest NAME SECONDS COMMAND...: every test of the program counts. One that was announced, and neither passed nor
# was skipped, has failed: whether it says so itself, crashed, hung, or never had its turn because of one that did.
googletest() {
    local name=$1 limit=$2 log="$logs/${1//[^A-Za-z0-9]/-}.log" began=$SECONDS code=0 announced good left_out disabled bad
    printf '%s' "   $name ... "
    timeout --foreground --kill-after=5 "$limit" "${@:3}" </dev/null >"$log" 2>&1 || code=$?
    announced=$(sed -nE '1,20 s/^\[==========\] Running ([0-9]+) tests? .*/\1/p' "$log")
    disabled=$(sed -nE 's/.*YOU HAVE ([0-9]+) DISABLED TESTS?.*/\1/p' "$log")
    good=$(occurrences '\[       OK \] .* \([0-9]+ ms\)' "$log")
    left_out=$(occurrences '\[  SKIPPED \] .* \([0-9]+ ms\)' "$log")
    bad=$((${announced:-0} - good - left_out))
    if ((bad <= 0)); then bad=$((code != 0 || good == 0)); fi
    passed=$((passed + good)) failed=$((failed + bad)) skipped=$((skipped + left_out + ${disabled:-0}))
    printf 'programs that crashed or hung\t%d\n' $((code > 1)) >>"$counted"
    verdict "$bad" "$good of ${announced:-unknown} tests passed, $((SECONDS - began)) s, exit code $code" "$log" || {
        grep -E '\[  FAILED  \] .* \([0-9]+ ms\)' "$log" || tail -n 40 "$log"
        ((code != 124)) || printf '%s\n' "stopped after $limit seconds"
        return 1
    }
}

# figures NAME: the table of what the program of that name has counted.
figures() {
    sed -nE 's/\r$//; s/^FIGURE (.*): ([^:]*)$/\1\t\2/p' "$logs/${1//[^A-Za-z0-9]/-}.log" | tee -a "$counted" |
        awk -F '\t' '{ printf "   %-90s %12s\n", $1, $2 }'
}

# total WHAT PATTERN: a row of the summary, if there are figures whose names match.
total() {
    awk -F '\t' -v what="$1" -v pattern="$2" '$1 ~ pattern { sum += $2; found = 1 }
        END { if (found) printf "%-60s %12d\n", what, sum }' "$counted"
}

# What the layers have counted, added up.
summary() {
    grep -qv '^programs' "$counted" || return 0
    printf '\n'
    total 'system calls that failed once' '^a system call, once, faults'
    total 'system calls that failed from then on' '^a system call, from then on, faults'
    total 'allocations that failed once' 'allocation, once, faults'
    total 'allocations that failed from then on' 'allocation, from then on, faults'
    total 'leaks, hangs and torn files after these faults' 'leaks, hangs and torn files'
    total 'lives of ten plug-ins in one process' '^soak, ten plug-ins: cycles'
    total 'starts and stops of the service' '^soak, service: starts and stops'
    total 'kills while the status file is replaced' '^kill, .*: kills'
    total 'reads beside them, of a whole file or of none' '^kill, .*: reads of (a whole file|none)'
    total 'reads of a part' '^kill, .*: reads of a part'
    total 'interleavings of the control lock' '^interleavings of the control lock'
    total 'lives raced by stop requests and console events' '^race, .*: (lives|single requests, none lost)$'
    total 'requests and events sent to them' '^race, .*: (controls|controls sent|requests|console events)$'
    total 'reports or requests that came too late' '^race, .*: (reports that came too late|requests after the end)'
    total "lives that Wine's manager ended" "^race, .*manager ended"
    total 'programs that crashed or hung' '^programs that crashed or hung'
}
