# Sourced by test.sh: stop requests from many sides, in a model, on threads, and against the executable.
# shellcheck shell=bash

layer_race() {
    check "the build native-tsan" ./build.sh native-tsan thread_tests && {
        googletest "the portable pieces under the thread sanitizer" $((${RACE_ROUNDS:-0} + 120)) \
            build/native-tsan/bin/thread_tests
        figures "the portable pieces under the thread sanitizer"
    }
    check "the build windows-release" ./build.sh windows-release || return
    use_prefix build/test/prefix
    check "a fresh Wine prefix" make_fresh_prefix || return
    googletest "the control lock, every interleaving and for real" $((${RACE_ROUNDS:-0} + 120)) \
        wine build/windows-release/bin/unit_tests.exe --gtest_filter='ControlLock.*:ServiceControlRace.*'
    figures "the control lock, every interleaving and for real"
    googletest "the executable, hammered" $((${RACE_SECONDS:-18} + 240)) \
        wine build/windows-release/bin/endurance_tests.exe --gtest_filter='Race.*'
    figures "the executable, hammered"
    leave_prefix
}
