# Sourced by run.sh: installs the host in a Wine prefix, starts it, watches it and stops it. Needs common.sh,
# dependencies.sh and wine.sh.
# shellcheck shell=bash

run=build/run
drive=$run/prefix/drive_c
program="$drive/Program Files/Corvell/ZiptraRemoteService"
executable='C:\Program Files\Corvell\ZiptraRemoteService\zuZiptraRemoteService.exe'
status=$drive/ProgramData/Corvell/zuZiptraRemoteService.status
service=zuZiptraRemoteService
interrupts=0 # how often Ctrl+C was pressed

# Ctrl+C reaches every process of the terminal's foreground group. Wine's processes are in a session of their own, so that
# only this script asks the host to stop, once, and Wine's own services are not affected.
in_wine() (
    trap '' INT TERM
    exec setsid --wait wine "$@" </dev/null
)

# Ctrl+C on a terminal also ends the command that this script is running.
pause() { sleep 0.1 || true; }

heed_interrupts() { trap 'interrupts=$((interrupts + 1))' INT TERM; }

prepare_prefix() {
    use_prefix "$run/prefix"
    trap leave_prefix EXIT
    make_prefix
    # By default Wine's server ends three seconds after its last client, and the running service with it. On a busy
    # machine the next command may take longer to start.
    wineserver --persistent
}

# copy FILE... FOLDER
copy() { cp "$@" || fail "cannot copy to ${*: -1}: is the disk full?"; }

install_host() {
    mkdir -p "$program" "$(dirname "$status")"
    copy build/windows-release/bin/{zuZiptraRemoteService.exe,zusysapi.dll} "$program"
}

# share NAME: makes C:\Corvell\NAME the shared directory.
share() {
    plugins=$drive/Corvell/$1/ZiptraRemoteService/plugins
    mkdir -p "$(dirname "$plugins")"
    in_wine reg add 'HKLM\SOFTWARE\Corvell\Common\Installer' /v ZUSHAREDDIR64 /d "C:\\Corvell\\$1" /f >"$run/reg.log" 2>&1 ||
        fail "the registry value cannot be written; see $run/reg.log"
}

# The examples are built as their author would, with the installed SDK.
install_examples() {
    share examples
    need_rust
    say "building the example plug-ins with the SDK"
    quietly "$run/sdk.log" cmake --install build/windows-release --component sdk --prefix "$run/sdk"
    quietly "$run/examples-configure.log" cmake -S examples --preset cross -B "$run/examples" \
        -D "ZiptraRemoteService_ROOT=$PWD/$run/sdk" \
        -D 'ZIPTRA_INSTALL_FOLDER=C:\Corvell\examples\ZiptraRemoteService\plugins'
    # Otherwise Wine's services, started by the first Windows program of the build, keep its output open for ever.
    quietly "$run/wine.log" wine cmd /c exit
    quietly "$run/examples-build.log" cmake --build "$run/examples"
    rm -f "$plugins"/*.{ini,dll} # of an earlier version
    quietly "$run/examples-install.log" cmake --install "$run/examples" --prefix "$(dirname "$plugins")"
}

# link_plugins DIRECTORY: uses it in place.
link_plugins() {
    share own
    ln -sfn "$1" "$plugins"
}

# The host is ready when its status file shows every description, as a plug-in or as one that cannot be read.
host_is_ready() {
    local descriptions seen
    [[ -e $status ]] || return
    descriptions=$(find -L "$plugins" -maxdepth 1 -name '*.ini' -type f | wc -l)
    seen=$(grep -cE '^(Loaded From: |Failed to parse )' "$status" || true)
    ((seen >= descriptions))
}

indented() { sed -E 's/\r$//; s/^./   &/' || true; }

# show_status TEXT
show_status() {
    say "$1; $status:"
    indented <"$status"
}

start_host() {
    rm -f "$status"
    # Under Wine, a program that may be a service waits up to ten seconds for the control pipe of the service that was
    # started last. No pipe has this number.
    in_wine reg add 'HKLM\System\CurrentControlSet\Control\ServiceCurrent' /ve /t REG_DWORD /d 1000000 /f >"$run/reg.log" 2>&1 || true
    trap '' INT TERM # until the host is in a session of its own
    setsid wine "$executable" </dev/null >"$run/host.log" 2>&1 &
    host=$! host_code=0
    heed_interrupts
}

host_is_alive() { kill -0 "$host" 2>/dev/null; }

# Returns early on Ctrl+C.
wait_for_host() { wait "$host" && host_code=0 || host_code=$?; }

host_ended_by_itself() {
    wait_for_host
    tail -n 20 "$run/host.log" >&2
    [[ ! -e $status ]] || show_status "its last status file" >&2
    fail "the host ended by itself, with exit code $host_code"
}

# Sends the host one Ctrl+C, once its console handler is installed: its first status file is written after that.
stop_host() {
    until [[ -e $status ]]; do
        host_is_alive || host_ended_by_itself
        pause
    done
    local before
    before=$(stat --format=%y "$status")
    say "stopping the host"
    interrupts=0
    kill -INT "$host"
    while host_is_alive; do
        wait_for_host
        case $interrupts in
            0) ;;
            1) say "the plug-ins are still stopping; press Ctrl+C again to kill the host" ;;
            *)
                { kill -KILL "$host" && wait "$host"; } 2>/dev/null || true
                fail "the host was killed before it had stopped"
                ;;
        esac
    done
    wait_for_host
    # Its last status file replaces the earlier one.
    [[ -e $status && $(stat --format=%y "$status") != "$before" ]] ||
        fail "the host did not stop cleanly: it ended with exit code $host_code and wrote no last status file"
}

service_state() { in_wine sc query "$service" 2>/dev/null | sed -nE 's/^ *STATE *: [0-9]+ +([A-Z_]+).*/\1/p'; }

start_service() {
    rm -f "$status"
    trap abandon_service EXIT
    say "registering the service"
    in_wine sc delete "$service" >/dev/null 2>&1 || true # left behind by a run that was killed
    in_wine sc create "$service" binPath= "\"$executable\"" start= demand >"$run/service.log" 2>&1 ||
        fail "the service cannot be registered; see $run/service.log"
    say "starting it"
    in_wine net start "$service" >>"$run/service.log" 2>&1 || fail "the service cannot be started; see $run/service.log"
    until host_is_ready || ((interrupts)); do
        [[ $(service_state) == RUNNING ]] || fail "the service ended by itself"
        pause
    done
    in_wine sc query "$service" | indented
}

stop_service() {
    say "stopping the service"
    in_wine net stop "$service" >>"$run/service.log" 2>&1 || fail "the service cannot be stopped; see $run/service.log"
    until [[ $(service_state) == STOPPED ]]; do pause; done
    in_wine sc query "$service" | indented
}

unregister_service() {
    trap leave_prefix EXIT
    say "unregistering the service"
    in_wine sc delete "$service" >>"$run/service.log" 2>&1 ||
        fail "the service cannot be unregistered; see $run/service.log"
}

# However the run ends, the service is stopped and unregistered.
abandon_service() {
    in_wine net stop "$service" || true
    in_wine sc delete "$service" || true
    leave_prefix
} >>"$run/service.log" 2>&1
