#!/usr/bin/env bash
# Builds everything for ARM, runs all its tests in an emulator, and makes its packages.
set -euo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)
here=$root/packaging/cross
jobs=$(nproc)
architecture='' sysroot='' tests=''
wants_tests=true wants_packages=true is_short=false

print_help() {
    cat <<'HELP'
packaging/cross/cross.sh armhf|arm64 [OPTION...]: builds for ARM, runs the tests in an emulator, makes packages

Builds into build/armhf or build/arm64, against a root of Debian 12 that it makes once
(packaging/cross/sysroot.sh), and lays the packages into build/packages/ARCH.

  --short           only what shows first what ARM makes different: some of the tests, and what they take. No packages
  --tests REGEX     only the tests whose names it matches
  --no-tests        build, and run no tests
  --no-packages     make no packages
  --jobs N          so many compilers at a time, and twice as many tests, which wait more than they work (the number
                    of processors)
  --sysroot FOLDER  take this root, and make none
  --help            print this
HELP
}

say() { printf 'cross: %s\n' "$*"; }

# fail STATUS MESSAGE
fail() {
    printf 'cross: %s\n' "$2" >&2
    exit "$1"
}

read_arguments() {
    while [ $# -gt 0 ]; do
        case $1 in
            armhf | arm64)
                [ -z "$architecture" ] || fail 2 "one architecture at a time, not \"$architecture\" and \"$1\""
                architecture=$1
                ;;
            --tests | --sysroot)
                [ -n "${2:-}" ] || fail 2 "$1 takes a value: --help tells which"
                printf -v "${1#--}" %s "$2"
                shift
                ;;
            --jobs)
                [[ ${2:-} =~ ^[1-9][0-9]{0,2}$ ]] || fail 2 "--jobs takes a number of processors, not \"${2:-}\""
                jobs=$2
                shift
                ;;
            --short) is_short=true ;;
            --no-tests) wants_tests=false ;;
            --no-packages) wants_packages=false ;;
            --help | -h) print_help && exit 0 ;;
            *) fail 2 "\"$1\" is neither armhf nor arm64, nor an option: --help lists them" ;;
        esac
        shift
    done
    [ -n "$architecture" ] || fail 2 "name an architecture: armhf or arm64"
    [ -z "$tests" ] || $wants_tests || fail 2 "--tests and --no-tests exclude each other"
    ! $is_short || { $wants_tests && [ -z "$tests" ]; } || fail 2 "--short has tests of its own: leave --tests and --no-tests out"
}

# A root of the caller's own has all that is asked of it, before anything is built.
settle_root() {
    [ -n "$sysroot" ] || return 0
    [ -d "$sysroot" ] || fail 2 "--sysroot takes a folder, and there is no $sysroot"
    sysroot=$(cd -- "$sysroot" && pwd)
    ! $wants_packages || $is_short || [ -s "$sysroot/var/lib/dpkg/status" ] \
        || fail 2 "$sysroot has no var/lib/dpkg/status, in which packages find what they depend on: leave them out by --no-packages"
}

# need PROGRAM PACKAGE
need() { command -v "$1" >/dev/null || fail 1 "$1 is missing: it is in the package $2"; }

need_programs() {
    local compiler=arm-linux-gnueabihf emulator=qemu-arm
    [ "$architecture" = armhf ] || compiler=aarch64-linux-gnu emulator=qemu-aarch64
    need cmake cmake
    need ninja ninja-build
    need ccache ccache
    need "$compiler-g++" "crossbuild-essential-$architecture"
    ! $wants_tests || need "$emulator" qemu-user
}

start=$SECONDS
# took WHAT: how long that was
took() {
    say "$1: $((SECONDS - start)) s"
    start=$SECONDS
}

# What CMake has found in one root is not in another.
forget_other_root() {
    local cache=$root/build/$architecture/CMakeCache.txt
    [ ! -e "$cache" ] || grep -qxF "CANBUS_SYSROOT:PATH=$sysroot" "$cache" || rm -rf "$cache" "${cache%/*}/CMakeFiles"
}

build() {
    local target=all
    ! $is_short || target=short_cross_tests
    say "building preset $architecture into build/$architecture"
    forget_other_root
    (cd "$root" && cmake --preset "$architecture" --log-level=WARNING -DCANBUS_SYSROOT="$sysroot" \
        -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    cmake --build "$root/build/$architecture" -j "$jobs" --target $target
    took "building"
}

# What it counts is left behind as the result of a proof when all the tests were run.
run_tests() {
    local selected=() status=0 folder=$root/build/$architecture which="all tests"
    if [ -n "$tests" ]; then
        selected=(--tests-regex "$tests") which="the tests that \"$tests\" matches"
    elif $is_short; then
        selected=(--label-regex '^short$') which="some of the tests"
    fi
    [ ${#selected[@]} -gt 0 ] || "$root/docs/figures/result.py" begin "cross-$architecture"
    say "running $which in the emulator"
    ctest --test-dir "$folder" --output-on-failure --no-tests=error -j "$((2 * jobs))" \
        --output-junit "$folder/tests.xml" "${selected[@]}" || status=1
    [ ${#selected[@]} -gt 0 ] || "$root/docs/figures/result.py" end "cross-$architecture" $status --junit "$folder/tests.xml"
    took "running the tests"
    return $status
}

make_packages() {
    say "making the packages for $architecture"
    "$root/packaging/package.sh" --arch "$architecture" --sysroot "$sysroot"
    took "making the packages"
}

read_arguments "$@"
settle_root
need_programs
if [ -z "$sysroot" ]; then
    sysroot=$("$here/sysroot.sh" "$architecture" | tail -n 1)
    took "the root"
else
    say "the root is $sysroot"
fi
build
status=0
! $wants_tests || run_tests || status=1
! $wants_packages || $is_short || make_packages || status=1
[ $status -eq 0 ] || fail 1 "FAILED: see above"
