# Sourced by test.sh: the Windows build, under Wine.
# shellcheck shell=bash

product=build/windows-release/bin/zuZiptraRemoteService.exe

# The same sources in another folder, whose path is longer, give the same bytes. A compiler cache would hide it if not.
same_bytes_elsewhere() {
    export CCACHE_DISABLE=1
    local elsewhere="$PWD/build/test/the same sources elsewhere"
    rm -rf "$elsewhere" &&
        mkdir -p "$elsewhere/build" &&
        tar --exclude=./build --exclude=./.git -cf - . | tar -xf - -C "$elsewhere" &&
        ln -s "$PWD/build/dependencies" "$elsewhere/build/dependencies" &&
        cmake -S "$elsewhere" --preset windows-release -DZUZIPTRA_TESTS=OFF &&
        cmake --build "$elsewhere/build/windows-release" --target zuZiptraRemoteService &&
        sha256sum "$product" "$elsewhere/$product" &&
        cmp "$product" "$elsewhere/$product" &&
        rm -rf "$elsewhere"
}

diagnostic_build() {
    cmake --preset windows-trace && cmake --build --preset windows-trace --target zuZiptraRemoteService
}

layer_windows() {
    check "the build windows-release" ./build.sh windows-release || return
    check "system libraries only are imported" scripts/lint-executable imports "$product"
    check "the loader may place and protect the executable" scripts/lint-executable flags "$product"
    check "two builds in two folders give the same bytes" same_bytes_elsewhere
    check "the build windows-trace" diagnostic_build
    use_prefix build/test/prefix
    check "a fresh Wine prefix" make_fresh_prefix || return
    googletest "the unit tests on Windows" 300 wine build/windows-release/bin/unit_tests.exe
    googletest "the diagnostic build's unit tests on Windows" 60 wine build/windows-release/bin/trace_tests.exe
    leave_prefix
}
