# Sourced: runs Windows programs in a Wine prefix of our own, never the user's. Needs common.sh and dependencies.sh.
# shellcheck shell=bash

# use_prefix DIRECTORY: what Wine starts from here on uses this prefix. Without winemenubuilder.exe nothing is written to
# the home folder, where it would register the prefix's file types.
use_prefix() {
    # File names are UTF-8, whatever the user's locale.
    export LC_ALL=C.UTF-8
    export WINEPREFIX=$PWD/$1 WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
    export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
}

# Makes the prefix unless it exists. One that was not completed is made anew.
make_prefix() {
    need_wine
    [[ -e $WINEPREFIX/complete ]] && return
    say "making a Wine prefix (ten seconds)"
    rm -rf "$WINEPREFIX"
    quietly "$WINEPREFIX.log" wineboot --init
    wineserver --wait
    touch "$WINEPREFIX/complete"
}

make_fresh_prefix() {
    rm -rf "$WINEPREFIX"
    make_prefix
}

# Ends the programs that still run in the prefix, and Wine's server.
leave_prefix() {
    [[ -e ${WINEPREFIX:-} ]] || return 0
    wineserver --kill 2>/dev/null || true
    wineserver --wait 2>/dev/null || true
}

# The prefix build/wine/base is made once and copied for each program, so that programs can run at the same time.
make_base_prefix() {
    writable build/wine
    exec 9>build/wine/lock
    flock 9
    use_prefix build/wine/base
    make_prefix
    flock --unlock 9
    exec 9>&-
}

# use_copy_of_base_prefix NAME: what Wine starts from here on uses a fresh copy, build/wine/NAME.
use_copy_of_base_prefix() {
    make_base_prefix
    use_prefix "build/wine/$1"
    leave_prefix
    rm -rf "build/wine/$1"
    # 700 MB, of which Wine replaces nothing but the registry's files.
    cp -al build/wine/base "build/wine/$1"
    cp --remove-destination build/wine/base/*.reg "build/wine/$1"
}
