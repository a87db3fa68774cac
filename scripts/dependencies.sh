# Sourced: installs the packages that a build or a test needs. Needs common.sh.

dependencies=build/dependencies

# need COMMAND... -- PACKAGE...: installs the missing packages with Debian's package manager. On other systems only the
# commands are checked; the libraries are assumed to be there.
need() {
    local commands=() missing=() name
    while [[ $1 != -- ]]; do
        commands+=("$1")
        shift
    done
    shift
    if command -v dpkg-query >/dev/null; then
        for name in "$@"; do
            dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q 'ok installed' || missing+=("$name")
        done
        ((${#missing[@]} == 0)) || install_packages "${missing[@]}"
    fi
    for name in "${commands[@]}"; do
        command -v "$name" >/dev/null || fail "$name not found: install it (Debian's packages: $*) and try again"
    done
}

install_packages() {
    command -v apt-get >/dev/null || fail "apt-get not found: install $* by hand and try again"
    ((EUID == 0)) || fail "run this as root, or first: apt-get install $*"
    say "installing $* (a minute or two)"
    export DEBIAN_FRONTEND=noninteractive
    (
        start_no_services
        quietly "$dependencies/apt-update.log" apt-get update
        quietly "$dependencies/apt-install.log" apt-get install -y --no-install-recommends "$@"
    ) || exit
}

# Until the subshell ends, no package's installation starts the service that it contains. A policy that the machine
# already has stays as it is.
start_no_services() {
    local policy=/usr/sbin/policy-rc.d
    [[ ! -e $policy ]] || return 0
    trap 'rm -f /usr/sbin/policy-rc.d' EXIT
    printf '%s\n' '#!/bin/sh' 'exit 101' >"$policy"
    chmod 755 "$policy"
}

# Writes this machine's package sources again, as sources of source packages.
source_lists() {
    local lists=$1 file
    mkdir -p "$lists"
    for file in /etc/apt/sources.list.d/*.sources; do
        [[ -e $file ]] && sed -E 's/^Types:.*/Types: deb-src/' "$file" >"$lists/$(basename "$file")"
    done
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [[ -e $file ]] && sed -nE 's/^deb(-src)? /deb-src /p' "$file" >"$lists/$(basename "$file" .list).list"
    done
    return 0
}

# Boost for the Windows target, from Debian's sources with Boost's own CMake files. The host only calls it while it lists
# its plug-ins, so it is compiled for size.
build_boost_for_windows() {
    local prefix=$dependencies/windows work=$dependencies/boost root=$PWD kind=MinSizeRel
    [[ -e $prefix/complete && $(<"$prefix/complete") == "$kind" ]] && return
    say "building Boost for Windows from Debian's sources (half a minute)"
    rm -rf "$work" "$prefix"
    source_lists "$work/lists"
    local apt=(-o "Dir::Etc::sourcelist=/dev/null" -o "Dir::Etc::sourceparts=$root/$work/lists"
        -o "Dir::State::lists=$root/$work/state" -o "APT::Sandbox::User=root")
    mkdir -p "$work/state/partial"
    quietly "$work/apt-update.log" apt-get "${apt[@]}" update
    (cd "$work" && quietly apt-source.log apt-get "${apt[@]}" source --download-only boost1.81)
    mkdir "$work/sources"
    tar -xf "$work"/boost1.81_*.orig.tar.* -C "$work/sources" --strip-components=1
    quietly "$work/configure.log" cmake -S "$work/sources" -B "$work/build" -G Ninja \
        -DCMAKE_BUILD_TYPE="$kind" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-mingw64.cmake" \
        -DCMAKE_INSTALL_PREFIX="$root/$prefix" -DBUILD_SHARED_LIBS=OFF \
        -DCMAKE_CXX_FLAGS="-D_WIN32_WINNT=0x0601 -ffile-prefix-map=$root/$work/=" \
        "-DBOOST_INCLUDE_LIBRARIES=filesystem;system;function;algorithm"
    quietly "$work/build.log" cmake --build "$work/build" --target install
    basename "$work"/boost1.81_*.dsc .dsc | sed 's/^[^_]*_//' | tr -d '\n' >"$prefix/version"
    rm -rf "$work"
    printf '%s' "$kind" >"$prefix/complete"
}

# They serve both platforms.
header_libraries=(libcli11-dev libfmt-dev nlohmann-json3-dev)

need_windows_compiler() {
    need cmake ninja x86_64-w64-mingw32-g++-posix tar xz -- \
        cmake ninja-build g++-mingw-w64-x86-64-posix googletest libclang-rt-14-dev dpkg-dev tar xz-utils \
        "${header_libraries[@]}"
    build_boost_for_windows
}

need_native_compiler() {
    need cmake ninja g++ -- \
        cmake ninja-build g++ googletest libboost-filesystem1.81-dev libboost1.81-dev \
        libclang-rt-14-dev "${header_libraries[@]}"
}

need_clang() { need clang clang++ -- clang libclang-rt-14-dev; }

# Another rustc may come first in PATH; the SDK finds the one that builds for Windows.
need_rust() { need rustc -- rustc libstd-rust-dev-windows; }

need_benchmarks() {
    local peer
    need pkg-config -- libbenchmark-dev pkg-config
    for peer in libinih-dev libsimpleini-dev libglib2.0-dev rapidjson-dev; do
        (need -- "$peer") || say "continuing without $peer: its rows are missing from the table"
    done
}

# The bill of materials names Boost's version. A folder made before it was recorded is made anew.
need_packaging() {
    need faketime msibuild msiinfo openssl osslsigncode python3 wixl -- \
        faketime msitools openssl osslsigncode python3 wixl
    [[ -e $dependencies/windows/version ]] || rm -f "$dependencies/windows/complete"
}

need_wine() { need wine wineboot wineserver -- wine64 wine; }

need_python() { need python3 -- python3; }

need_linters() {
    need clang-format shellcheck python3 pyflakes3 -- clang-format shellcheck python3 python3-yaml pyflakes3
}

need_clang_tidy() {
    need run-clang-tidy -- clang-tidy
}

need_peers() {
    need chromium dot objdump prometheus prometheus-node-exporter promtool -- \
        binutils chromium graphviz prometheus prometheus-node-exporter python3-jsonschema \
        python3-yaml
}
