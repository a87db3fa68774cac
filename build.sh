#!/usr/bin/env bash
# Builds one preset: ./build.sh [preset]
cd "$(dirname "$0")"
source scripts/common.sh
source scripts/dependencies.sh

usage() {
    cat <<TXT
Usage: ./build.sh [preset]

Builds build/<preset>; the default is windows-release, which gives
build/windows-release/bin/zuZiptraRemoteService.exe.

Presets: windows-release windows-debug windows-trace native-asan native-coverage native-fuzz
TXT
}

preset=${1:-windows-release}
case $preset in
    -h | --help)
        usage
        exit 0
        ;;
    windows-release | windows-debug | windows-trace) need_windows_compiler ;;
    native-asan | native-coverage) need_native_compiler ;;
    native-fuzz)
        need_native_compiler
        need_clang
        ;;
    *)
        usage >&2
        exit 2
        ;;
esac
(($# <= 1)) || {
    usage >&2
    exit 2
}

say "building $preset"
quietly "build/$preset/configure.log" cmake --preset "$preset"
quietly "build/$preset/build.log" cmake --build --preset "$preset"
say "built: build/$preset/bin"
