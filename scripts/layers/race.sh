# Sourced by test.sh: stop requests from many sides, in a model, in one process, and against the executable.
# shellcheck shell=bash

layer_race() {
    check "the build windows-release" ./build.sh windows-release || return
    use_prefix build/test/prefix
    check "a fresh Wine prefix" make_fresh_prefix || return
    googletest "the control lock, every interleaving and for real" $((${RACE_ROUNDS:-0} + 120)) \
        wine build/windows-release/bin/unit_tests.exe --gtest_filter='ControlLock.*:ServiceControlRace.*'
    figures "the control lock, every interleaving and for real"
    googletest "the executable, hammered" $((${RACE_SECONDS:-24} + 240)) \
        wine build/windows-release/bin/endurance_tests.exe --gtest_filter='Race.*'
    figures "the executable, hammered"
    leave_prefix
}
