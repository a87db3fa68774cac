# Sourced by test.sh: every system call and every request for memory fails in turn, natively and under Wine.
# shellcheck shell=bash disable=SC2154 # test.sh sets what is not set here

layer_sweep() {
    local native="every allocation fails in turn" windows="every system call and every allocation fails in turn"
    check "the build native-asan" ./build.sh native-asan &&
        googletest "$native" 600 build/native-asan/bin/sweep_tests
    figures "$native"
    check "the build windows-release" ./build.sh windows-release || return
    use_prefix build/test/prefix
    check "a Wine prefix" make_prefix || return
    googletest "$windows" 3000 wine build/windows-release/bin/sweep_tests.exe || true
    sed -n '/^system call  /,/^\[-/{/^\[-/!s/^/   /p}' "$logs/${windows// /-}.log"
    figures "$windows"
    leave_prefix
}
