# Sourced by test.sh: the portable core under address, leak and undefined-behaviour sanitizers.
# shellcheck shell=bash

layer_native() {
    check "the build native-asan" ./build.sh native-asan || return
    googletest "the unit tests under the sanitizers" 300 build/native-asan/bin/unit_tests
    googletest "the diagnostic build's unit tests under the sanitizers" 60 build/native-asan/bin/trace_tests
}
