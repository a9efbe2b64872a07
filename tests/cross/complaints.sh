#!/usr/bin/env bash
# What the toolchain files say where something is missing: one clear error each, and no guess.
#
# complaints.sh CMAKE SOURCE_DIR BUILD_DIR: in BUILD_DIR/toolchain-check, which it replaces.
set -euo pipefail

cmake=$1 source=$2 work=$3/toolchain-check
unset CANBUS_SYSROOT CANBUS_CROSS_PREFIX CANBUS_HOST_QT_BIN CMAKE_TOOLCHAIN_FILE

fail() {
    printf 'complaints: %s\n' "$*" >&2
    exit 1
}

# expect_complaint TEXT OPTION...: configuring with the toolchain file for 32-bit ARM fails with this text.
expect_complaint() {
    local text=$1 said
    shift
    rm -rf "$work/build"
    ! said=$("$cmake" -S "$work/project" -B "$work/build" \
        -DCMAKE_TOOLCHAIN_FILE="$source/packaging/toolchains/armhf.cmake" "$@" 2>&1) \
        || fail "configures with ${*:-nothing}, and should say: $text"
    # CMake breaks lines where it likes.
    said=$(tr -s '[:space:]' ' ' <<<"$said")
    [[ $said == *"$text"* ]] || fail "with ${*:-nothing} it should say: $text"$'\n'"it says: $said"
}

# A compiler that knows its name, and roots that hold what each case has.
rm -rf "$work"
mkdir -p "$work"/{project,bin,empty,yocto/usr/lib/cmake/Qt5Core,yocto/usr/bin,tools}
printf 'cmake_minimum_required(VERSION 3.22)\nproject(Nothing LANGUAGES CXX)\n' >"$work/project/CMakeLists.txt"
printf '#!/bin/sh\necho board-linux\n' >"$work/bin/board-g++"
printf 'no program\n' >"$work/yocto/usr/bin/moc"
: >"$work/yocto/usr/lib/cmake/Qt5Core/Qt5CoreConfig.cmake"
chmod +x "$work/bin/board-g++" "$work/yocto/usr/bin/moc"
compiler=-DCANBUS_CROSS_PREFIX=$work/bin/board-

expect_complaint "CANBUS_SYSROOT is not set"
expect_complaint "there is no such folder" -DCANBUS_SYSROOT="$work/nowhere"
expect_complaint "there is no compiler $work/bin/other-g++" \
    -DCANBUS_SYSROOT="$work/empty" -DCANBUS_CROSS_PREFIX="$work/bin/other-"
expect_complaint "which holds no Qt 5 for $work/bin/board-g++" -DCANBUS_SYSROOT="$work/empty" "$compiler"
expect_complaint "there is no moc of Qt 5 that runs on this machine" \
    -DCANBUS_SYSROOT="$work/yocto" "$compiler" -DCANBUS_HOST_QT_BIN="$work/tools"
