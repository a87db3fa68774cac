# Sourced by test.sh: format, static analysis, the house rules.
# shellcheck shell=bash

# The files that people write, and nothing that is built or kept by git.
files_like() {
    find . \( -path ./build -o -path ./.git \) -prune -o -type f \( "$@" \) -print
}

format() { files_like -name '*.cpp' -o -name '*.h' -o -name '*.c' | xargs clang-format --dry-run -Werror; }
scripts() { shellcheck --external-sources ./*.sh .ci/run scripts/lint-tidy scripts/layers/*.sh; }

layer_lint() {
    check "the tools" need_linters || return
    check "clang-format" format
    check "shellcheck" scripts
    local rule
    for rule in $(scripts/lint-house rules); do
        check "house: ${rule//-/ }" scripts/lint-house "$rule"
    done
    scripts/lint-house figures | sed 's/^/   /'
}
