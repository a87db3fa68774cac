# Sourced by test.sh: the same life again and again, under Wine.
# shellcheck shell=bash

layer_soak() {
    check "the build windows-release" ./build.sh windows-release || return
    use_prefix build/test/prefix
    check "a fresh Wine prefix" make_fresh_prefix || return
    googletest "plug-ins and the service, again and again" $((${SOAK_SECONDS:-15} + ${SOAK_CYCLES:-500} + 120)) \
        wine build/windows-release/bin/endurance_tests.exe --gtest_filter='Soak.*'
    figures "plug-ins and the service, again and again"
    leave_prefix
}
