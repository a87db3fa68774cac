# Sourced by test.sh: the Windows build, under Wine.
# shellcheck shell=bash

layer_windows() {
    check "the build windows-release" ./build.sh windows-release || return
    use_prefix build/test/prefix
    check "a fresh Wine prefix" make_fresh_prefix || return
    googletest "the unit tests on Windows" 300 wine build/windows-release/bin/unit_tests.exe
    googletest "the trace of a diagnostic build on Windows" 60 wine build/windows-release/bin/trace_tests.exe
    leave_prefix
}
