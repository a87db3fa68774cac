# Sourced by test.sh: lines and branches of the product that the unit tests reach, natively and on Windows together.
# shellcheck shell=bash disable=SC2154 # test.sh sets what is not set here

counting_builds=(native-coverage windows-coverage)

build_counting() { ./build.sh "$1" unit_tests trace_tests sweep_tests; }

layer_coverage() {
    local build
    for build in "${counting_builds[@]}"; do
        check "the build $build" build_counting "$build" || return
        find "build/$build" -name '*.gcda' -delete
    done
    googletest "the unit tests, counting" 300 build/native-coverage/bin/unit_tests
    googletest "the diagnostic build's unit tests, counting" 60 build/native-coverage/bin/trace_tests
    googletest "the sweep, counting" 300 build/native-coverage/bin/sweep_tests
    use_prefix build/test/prefix
    check "a Wine prefix for counting" make_prefix || return
    # The programs write their counts where they were built, which Windows finds on drive Z.
    export GCOV_PREFIX=Z:
    googletest "the unit tests on Windows, counting" 300 wine build/windows-coverage/bin/unit_tests.exe
    googletest "the diagnostic build's unit tests on Windows, counting" 60 wine build/windows-coverage/bin/trace_tests.exe
    unset GCOV_PREFIX
    leave_prefix
    check "the floors and the list of what is not reached" scripts/coverage \
        build/native-coverage=gcov build/windows-coverage=x86_64-w64-mingw32-gcov-posix || return
    sed 's/^/   /' "$logs/the-floors-and-the-list-of-what-is-not-reached.log"
}
