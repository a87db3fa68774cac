# Sourced by test.sh: the executable itself, in both of its modes, under Wine.
# shellcheck shell=bash

layer_endtoend() {
    check "the build windows-release" ./build.sh windows-release || return
    use_prefix build/test/prefix
    check "a fresh Wine prefix" make_fresh_prefix || return
    googletest "the product from outside" 600 wine build/windows-release/bin/endtoend_tests.exe
    figures "the product from outside"
    leave_prefix
}
