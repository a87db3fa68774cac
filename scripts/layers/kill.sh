# Sourced by test.sh: the executable killed while it replaces the status file, under Wine.
# shellcheck shell=bash

layer_kill() {
    check "the build windows-release" ./build.sh windows-release || return
    use_prefix build/test/prefix
    check "a fresh Wine prefix" make_fresh_prefix || return
    googletest "the executable killed" $((2 * ${KILLS:-55} + 180)) \
        wine build/windows-release/bin/endurance_tests.exe --gtest_filter='Kill.*'
    figures "the executable killed"
    leave_prefix
}
