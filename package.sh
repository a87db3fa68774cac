#!/usr/bin/env bash
# Builds what is released: ./package.sh [--sign CERTIFICATE KEY]
cd "$(dirname "$0")" || exit
caller=$OLDPWD
source scripts/common.sh
source scripts/dependencies.sh

dist=${DIST:-dist}
usage() {
    cat <<TXT
Usage: ./package.sh [--sign CERTIFICATE KEY]

Fills dist/ with the MSI, the archives of the product, the SDK and the symbols,
the bill of materials and SHA256SUMS. The same commit produces the same files. If
something fails, the previous dist/ stays.

  --sign CERTIFICATE KEY   sign the programs and the MSI; both are files in PEM form, and the
                           certificates of its issuers may follow the first one

DIST names another folder than dist.
TXT
}

misused() {
    usage >&2
    exit 2
}

# The date of everything that is made: that of the commit, or that of the files that git archive wrote.
source_date() {
    git -C "$PWD" log -1 --format=%ct 2>/dev/null || stat -c %Y CMakeLists.txt
}

# public_key KIND FILE: what `openssl KIND` reads from the file. It never asks for a password.
public_key() { openssl "$1" -in "$2" "${@:3}" </dev/null 2>/dev/null; }

check_certificate() {
    local ours theirs
    ours=$(public_key x509 "$certificate" -noout -pubkey) || fail "$certificate contains no certificate in PEM form"
    theirs=$(public_key pkey "$key" -pubout -passin pass:) || fail "$key contains no private key without a password"
    [[ $ours == "$theirs" ]] || fail "the certificate in $certificate does not match the key in $key"
}

# sign FILE: replaces the file by a signed one, if a certificate is given. The name of the option for the date depends on
# osslsigncode's version.
sign() {
    [[ -n $certificate ]] || return 0
    local date=-st
    ! osslsigncode sign --help 2>&1 | grep -q -- '\[ -time' || date=-time
    quietly build/package/sign.log osslsigncode sign -h sha256 -certs "$certificate" -key "$key" \
        "$date" "$SOURCE_DATE_EPOCH" -n "ZU-Ziptra Remote Service" -in "$1" -out "$1.signed"
    cat "$certificate" /etc/ssl/certs/ca-certificates.crt >build/package/roots.pem 2>/dev/null || true
    quietly build/package/verify.log osslsigncode verify -CAfile build/package/roots.pem -in "$1.signed"
    cat "$1.signed" >"$1"
    rm "$1.signed"
}

# separate PROGRAM: copies it without its symbols, which go where debuggers look for them by the build id.
separate() {
    local built=build/windows-package/bin/$1 id symbols
    id=$(x86_64-w64-mingw32-objdump -p "$built" | sed -nE 's/.*format RSDS signature ([0-9a-f]+) .*/\1/p')
    [[ $id =~ ^[0-9a-f]{32}$ ]] || fail "$built has no build id"
    symbols=$stage/symbols/.build-id/${id:0:2}/${id:2}.debug
    mkdir -p "$(dirname "$symbols")" "$stage/product"
    x86_64-w64-mingw32-objcopy --only-keep-debug "$built" "$symbols"
    x86_64-w64-mingw32-strip -o "$stage/product/$1" "$built"
    printf '%s  %s\n' "$id" "$1" >>"$stage/symbols/programs.txt"
    sign "$stage/product/$1"
}

fill() {
    local name=zuZiptraRemoteService-$version program
    for program in "${programs[@]}" ziptraActions.dll; do
        separate "$program"
    done
    cp LICENSE "$stage/product"
    cp -r "$stage/product" "$stage/msi"
    rm "$stage/product/ziptraActions.dll"
    quietly build/package/msi.log packaging/msi "$new/$name.msi" "$stage/msi" "$version"
    sign "$new/$name.msi"
    quietly build/package/sdk.log cmake --install build/windows-package --component sdk --prefix "$stage/sdk"
    cp "$stage/product/ziptra.exe" "$stage/sdk/bin/"
    packaging/zip "$new/$name.zip" "$stage/product"
    packaging/zip "$new/$name-sdk.zip" "$stage/sdk"
    packaging/zip "$new/$name-symbols.zip" "$stage/symbols"
    packaging/sbom "$version" "$stage"/msi/*.{exe,dll} >"$new/$name.cdx.json"
    (cd "$new" && sha256sum -- * >../SHA256SUMS && mv ../SHA256SUMS .)
}

# Whatever ends this, no unfinished folder remains. Not every tool says that there is no space left.
clean_up() {
    local code=$?
    if ((code)); then
        ! { [[ -d $new ]] && ! head -c 8000000 /dev/zero >"$new/probe" 2>/dev/null; } || say "no space left for $dist" >&2
        say "$dist is as before" >&2
    fi
    rm -rf "$new" "$stage"
}

# Puts the complete folder in place. An interruption between the two moves leaves the old one as dist.old.
replace() {
    rm -rf "$dist.old"
    [[ ! -e $dist ]] || mv "$dist" "$dist.old"
    mv "$new" "$dist"
    rm -rf "$dist.old"
}

certificate='' key=''
while (($#)); do
    case $1 in
        -h | --help)
            usage
            exit 0
            ;;
        --sign)
            (($# >= 3)) || misused
            certificate=$(cd "$caller" && realpath -m -- "$2")
            key=$(cd "$caller" && realpath -m -- "$3")
            shift 2
            ;;
        *) misused ;;
    esac
    shift
done

alone build/package
need_packaging
[[ -z $certificate ]] || check_certificate
./build.sh windows-package zuZiptraRemoteService ziptra ziptraActions

export TZ=UTC LC_ALL=C.UTF-8 SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(source_date)}
umask 022
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/windows-package/CMakeCache.txt)
programs=(zuZiptraRemoteService.exe ziptra.exe)
stage=build/package/stage new=$dist.new
trap clean_up EXIT
rm -rf "$stage" "$new"
writable "$new"
mkdir -p "$stage"
say "packing version $version"
fill
replace
say "filled: $dist"
(cd "$dist" && ls -l)
[[ -n $certificate ]] || say "the programs and the MSI are unsigned: --sign CERTIFICATE KEY signs them"
