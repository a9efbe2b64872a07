#!/usr/bin/env bash
# Makes Debian packages of this tree: package.sh --help says how.
set -euo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
wants_build=true wants_lintian=true wants_check=true wants_symbols=false
arch='' sysroot=''

print_help() {
    cat <<'HELP'
packaging/package.sh [OPTION...]: Debian packages of this tree, into build/packages/ARCH

Builds what git tracks, as it lies in the folder, checks the packages with lintian, and installs, uses and removes
them in a fresh root of Debian 12 (tests/packages/install_in_root.sh, which takes root: by sudo if need be).

  --arch ARCH      for another machine: armhf or arm64; the packages are not installed then. Takes --sysroot
  --sysroot DIR    a root of that machine with what the build takes, and dpkg's database of it
  --no-lintian     leave lintian out
  --no-check       leave the installation out
  --check          build nothing: check the packages that are in build/packages/ARCH
  --symbols        build, write what the libraries export into packaging/debian/*.symbols, and end: when a symbol
                   has come or gone, which fails the build, and that was meant
  --help           print this

The packages with the debug symbols lie in the folder debug beside the others. The build happens in
build/package/ARCH, and build.log there tells all of it.
HELP
}

say() { printf 'package: %s\n' "$*"; }

# fail STATUS MESSAGE
fail() {
    printf 'package: %s\n' "$2" >&2
    exit "$1"
}

read_options() {
    while [ $# -gt 0 ]; do
        case $1 in
            --arch | --sysroot)
                [ -n "${2:-}" ] || fail 2 "$1 takes a value: package.sh --help"
                printf -v "${1#--}" %s "$2"
                shift
                ;;
            --no-lintian) wants_lintian=false ;;
            --no-check) wants_check=false ;;
            --check) wants_build=false ;;
            --symbols) wants_symbols=true ;;
            --help) print_help && exit 0 ;;
            *) fail 2 "\"$1\" is no option: package.sh --help lists them" ;;
        esac
        shift
    done
    $wants_build || ! $wants_symbols || fail 2 "--symbols builds and --check does not: leave one out"
}

# The architecture, and whether this machine is another.
settle_arch() {
    local here
    here=$(dpkg --print-architecture) || fail 1 "dpkg is missing: packages are made on Debian"
    arch=${arch:-$here}
    is_cross=false
    [ "$arch" != "$here" ] || {
        [ -z "$sysroot" ] || fail 2 "--sysroot is for another machine, and this one is $arch: leave it out"
        return 0
    }
    is_cross=true
    [[ $arch =~ ^(armhf|arm64)$ ]] || fail 2 "--arch takes armhf or arm64, not \"$arch\""
    [ -n "$sysroot" ] || fail 2 "--arch $arch takes --sysroot DIR: a root of that machine"
    [ -d "$sysroot" ] || fail 2 "the sysroot \"$sysroot\" is no folder"
    sysroot=$(realpath -- "$sysroot")
    [ -s "$sysroot/var/lib/dpkg/status" ] \
        || fail 1 "$sysroot has no var/lib/dpkg/status: what the packages depend on is read from dpkg's database there"
}

need_commands() {
    local command
    for command; do
        command -v "$command" >/dev/null || fail 1 "$command is missing: ./dev package installs what this takes"
    done
}

# --- build ---

version_of_tree() { sed -nE 's/^  VERSION ([0-9.]+)$/\1/p' "$root/CMakeLists.txt"; }

# What git tracks, as it lies here, with packaging/debian as its folder debian.
stage_tree() {
    rm -rf "$work"
    mkdir -p "$tree"
    local git=(git -c safe.directory="$root" -C "$root")
    "${git[@]}" rev-parse --git-dir >/dev/null 2>&1 \
        || fail 1 "$root is no git checkout: git tells what belongs to the packages"
    local file
    (cd "$root" && "${git[@]}" ls-files -z | while IFS= read -r -d '' file; do
        [ ! -e "$file" ] || printf '%s\0' "$file"
    done | tar -c --null -T -) | tar -C "$tree" -x
    cp -a "$tree/packaging/debian" "$tree/debian"
    local packaged
    packaged=$(dpkg-parsechangelog -l "$tree/debian/changelog" -S Version)
    [ "${packaged%-*}" = "$version" ] \
        || fail 1 "packaging/debian/changelog is about $packaged, and CMakeLists.txt has version $version: add an entry"
}

# Debhelper gives the build an empty home, so that the compiler cache has to be named.
use_compiler_cache() {
    command -v ccache >/dev/null || return 0
    CCACHE_DIR=$(ccache -k cache_dir)
    export CCACHE_DIR CMAKE_CXX_COMPILER_LAUNCHER=ccache
}

build_packages() {
    local options=(--build=binary --unsigned-changes --unsigned-buildinfo --jobs="$(nproc)")
    version=$(version_of_tree)
    tree=$work/libcanbusservice-$version
    stage_tree
    use_compiler_cache
    if $is_cross; then
        # What it takes is in the sysroot, where dpkg-checkbuilddeps does not look.
        options+=(--host-arch="$arch" --no-check-builddeps)
        export CANBUS_SYSROOT=$sysroot PATH=$tree/debian/cross:$PATH
    fi
    if $wants_symbols; then
        export DPKG_GENSYMBOLS_CHECK_LEVEL=0
    fi
    say "building $version for $arch in ${work#"$root"/}"
    if ! (cd "$tree" && dpkg-buildpackage "${options[@]}") >"$work/build.log" 2>&1 </dev/null; then
        tail -n 40 "$work/build.log" >&2
        fail 1 "the build has failed: the lines above are the last of ${work#"$root"/}/build.log"
    fi
    rm -rf "$packages"
    mkdir -p "$packages/debug"
    mv "$work"/*-dbgsym_*.deb "$packages/debug/"
    mv "$work"/*.deb "$packages/"
    (cd "$packages" && printf "package: ${packages#"$root"/}/%s\n" *.deb)
}

renew_symbols() {
    local file package
    for file in "$root"/packaging/debian/*.symbols; do
        package=$(basename "$file" .symbols)
        say "what ${package} exports"
        "$root/packaging/debian/renew_symbols.py" "$package" "$version" "$tree/debian/$package" "$file"
    done
}

# --- checks ---

check_by_lintian() {
    say "lintian"
    local findings status=0
    findings=$(lintian --allow-root --fail-on error,warning "$packages"/*.deb "$packages"/debug/*.deb 2>&1) || status=1
    findings=$(grep -v 'root privileges' <<<"$findings") || true
    [ -z "$findings" ] || printf '%s\n' "$findings"
    [ $status -eq 0 ] || fail 1 "lintian has findings: see above"
    say "lintian: no findings"
}

check_in_root() {
    local as_root=()
    # Made here, so that it stays the user's when root writes into it.
    mkdir -p "${XDG_CACHE_HOME:-$HOME/.cache}/canbusservice"
    [ "$(id -u)" -eq 0 ] || as_root=(sudo "--preserve-env=HOME,XDG_CACHE_HOME,http_proxy,https_proxy")
    "${as_root[@]}" "$root/tests/packages/install_in_root.sh" "$packages"
}

read_options "$@"
settle_arch
work=$root/build/package/$arch
packages=$root/build/packages/$arch
if $wants_build; then
    need_commands git dpkg-buildpackage dh
    build_packages
    if $wants_symbols; then
        renew_symbols
        exit 0
    fi
elif ! compgen -G "$packages/*.deb" >/dev/null; then
    fail 1 "there are no packages for $arch in ${packages#"$root"/}: package.sh without --check builds them"
fi
if $wants_lintian; then
    need_commands lintian
    check_by_lintian
fi
if $wants_check && $is_cross; then
    say "not installed: the packages are for $arch"
elif $wants_check; then
    check_in_root
fi
