#!/usr/bin/env bash
# Runs the host with its plug-ins under Wine: ./run.sh [--service] [--plugins DIR]

# A script that starts this one in the background makes it ignore SIGINT, which no trap can undo: start again.
if [[ $((0x$(sed -nE 's/^SigIgn:\s*//p' /proc/self/status) & 2)) != 0 ]]; then
    exec env --default-signal=INT "$BASH" "$0" "$@"
fi

caller=$PWD
cd "$(dirname "$0")" || exit
source scripts/common.sh
source scripts/dependencies.sh
source scripts/wine.sh
source scripts/host.sh

usage() {
    cat <<TXT
Usage: ./run.sh [--service] [--plugins DIR]

Builds the host, installs it with the example plug-ins in a Wine prefix of its own (in $run), and runs it in
the foreground until Ctrl+C. Shows the status file when the plug-ins have started, and again after the stop.

  --service       run it once through Wine's service control manager: register, start, query, stop, unregister
  --plugins DIR   host the plug-ins whose descriptions (*.ini) are in DIR instead of the examples; each Path is the
                  library's full path as Windows sees it, where / is Z:\\
  -h, --help      show this help

ZUSYSAPI_SETTING=0 ./run.sh shows a machine on which deployment is not allowed.
TXT
}

run_in_foreground() {
    say "starting the host (Ctrl+C stops it)"
    start_host
    until host_is_ready || ((interrupts)); do
        host_is_alive || host_ended_by_itself
        pause
    done
    if ((!interrupts)); then
        show_status "the plug-ins have been started"
        ((own_plugins)) || say "a file dropped into $plugins/data/outbox comes out in data/deployed"
    fi
    until ((interrupts)); do
        host_is_alive || host_ended_by_itself
        wait_for_host
    done
    stop_host
    show_status "the host has stopped (exit code $host_code: the last error that its thread saw)"
}

run_as_service() {
    start_service
    show_status "the plug-ins have been started"
    stop_service
    show_status "the service has stopped"
    unregister_service
}

as_service=0 own_plugins=0 directory=
while (($#)); do
    case $1 in
        -h | --help)
            usage
            exit 0
            ;;
        --service) as_service=1 ;;
        --plugins)
            own_plugins=1 directory=${2-}
            [[ -n $directory ]] || {
                usage >&2
                exit 2
            }
            shift
            ;;
        *)
            usage >&2
            exit 2
            ;;
    esac
    shift
done
if ((own_plugins)); then
    own=$(cd "$caller" && cd "$directory" 2>/dev/null && pwd) || fail "no such directory: $directory"
fi

trap 'exit 130' INT TERM
alone "$run"
./build.sh windows-release zuZiptraRemoteService zusysapi ziptra
prepare_prefix
install_host
if ((own_plugins)); then
    link_plugins "$own"
else
    install_examples
fi
heed_interrupts
if ((as_service)); then
    run_as_service
else
    run_in_foreground
fi
