#!/usr/bin/env bash
# Builds one preset, or some of its targets: ./build.sh [preset [target...]]
cd "$(dirname "$0")" || exit
source scripts/common.sh
source scripts/dependencies.sh

usage() {
    cat <<TXT
Usage: ./build.sh [preset [target...]]

Builds all of build/<preset>, or the CMake targets named. The default is
windows-release, which produces zuZiptraRemoteService.exe and its companion
ziptra.exe in build/windows-release/bin; native-release produces ziptra for this
machine in build/native-release/bin.

Presets: windows-release windows-package windows-debug windows-trace
         windows-coverage windows-bench
         native-release native-asan native-tsan native-coverage native-fuzz
         native-bench
TXT
}

preset=${1:-windows-release}
case $preset in
    -h | --help)
        usage
        exit 0
        ;;
    windows-release | windows-package | windows-debug | windows-trace | windows-coverage | windows-bench) ;;
    native-release | native-asan | native-tsan | native-coverage | native-fuzz | native-bench) ;;
    *)
        usage >&2
        exit 2
        ;;
esac
targets=("${@:2}")
((${#targets[@]})) || targets=(all)

# One build at a time in this tree; others wait for it.
writable build
exec 8>build/lock
flock --nonblock 8 || { say "waiting for another build" && flock 8; }

case $preset in
    windows-*) need_windows_compiler ;;
    native-*) need_native_compiler ;;
esac
[[ $preset != native-fuzz ]] || need_clang
[[ $preset != *-bench ]] || need_benchmarks

say "building $preset (some minutes the first time)"
quietly "build/$preset/configure.log" cmake --preset "$preset"
quietly "build/$preset/build.log" cmake --build --preset "$preset" --target "${targets[@]}"
say "built: build/$preset/bin"
