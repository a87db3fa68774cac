# Sourced by test.sh: every system call of whole lives fails in turn, under Wine.
# shellcheck shell=bash disable=SC2154 # test.sh sets what is not set here

layer_sweep() {
    check "the build windows-release" ./build.sh windows-release || return
    use_prefix build/test/prefix
    check "a Wine prefix" make_prefix || return
    googletest "every system call fails in turn" 1800 wine build/windows-release/bin/sweep_tests.exe || true
    sed -n '/^system call  /,/^system calls: /s/^/   /p' "$logs/every-system-call-fails-in-turn.log"
    leave_prefix
}
