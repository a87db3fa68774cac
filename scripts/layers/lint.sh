# Sourced by test.sh: format, static analysis, the house rules.
# shellcheck shell=bash

# The files that people write, and nothing that is built or kept by git.
files_like() {
    find . \( -path ./build -o -path ./.git \) -prune -o -type f \( "$@" \) -print
}

format() { files_like -name '*.cpp' -o -name '*.h' -o -name '*.c' | xargs clang-format --dry-run -Werror; }
commands() { shellcheck --external-sources ./*.sh bench/*.sh .ci/run scripts/fuzz scripts/lint-tidy scripts/lint-executable scripts/layers/*.sh; }

layer_lint() {
    check "the tools" need_linters || return
    check "clang-format" format
    check "shellcheck" commands
    local rule
    for rule in $(scripts/lint-house rules); do
        check "house: ${rule//-/ }" scripts/lint-house "$rule"
    done
    scripts/lint-house figures | sed 's/^/   /'
    check "the build native-asan" ./build.sh native-asan && check "clang-tidy on the portable files" scripts/lint-tidy native
    check "the build windows-release" ./build.sh && check "clang-tidy on the Windows files" scripts/lint-tidy windows
}
