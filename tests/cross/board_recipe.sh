#!/usr/bin/env bash
# Builds the library and the smallest host for a board with 32-bit ARM as docs/integration.md says, and runs the host
# in the emulator. Status 77, skipped: there is no compiler for it, no emulator, or no root, which ./dev cross makes.
# With CANBUS_REQUIRE_CROSS=1 that is a failure.
#
# board_recipe.sh SOURCE_DIR BUILD_DIR: in BUILD_DIR/board-check, which it replaces.
set -euo pipefail

source=$1 work=$2/board-check
unset CMAKE_TOOLCHAIN_FILE CANBUS_SYSROOT DESTDIR LD_LIBRARY_PATH
! command -v ccache >/dev/null || export CMAKE_CXX_COMPILER_LAUNCHER=ccache

fail() {
    printf 'board_recipe: %s\n' "$*" >&2
    exit 1
}

# skip WHY
skip() {
    [ "${CANBUS_REQUIRE_CROSS:-0}" != 1 ] || fail "cannot run: $1"
    echo "board_recipe: skipped, $1"
    exit 77
}

for program in arm-linux-gnueabihf-g++ qemu-arm; do
    command -v "$program" >/dev/null || skip "$program is missing"
done
"$source/packaging/cross/sysroot.sh" --made armhf || skip "the root is made by ./dev cross armhf"

# The tree as a reader has it, with a folder build of its own.
rm -rf "$work"
mkdir -p "$work"
for entry in "$source"/*; do
    [ "$(basename "$entry")" = build ] || ln -s "$entry" "$work/"
done
cd "$work"

build_library() {
    CANBUS_SYSROOT=$(packaging/cross/sysroot.sh armhf)
    export CANBUS_SYSROOT
    cmake -S . -B build/board -G Ninja -DCMAKE_BUILD_TYPE=Release -DCANBUS_BUILD_TOOLS=OFF \
        -DCMAKE_TOOLCHAIN_FILE="$PWD/packaging/toolchains/armhf.cmake"
    cmake --build build/board
    DESTDIR="$PWD/build/board-root" cmake --install build/board --prefix /usr
}

build_host() {
    cmake -S examples/minimal-host -B build/board-host -G Ninja -DCMAKE_PREFIX_PATH="$PWD/build/board-root/usr" \
        -DCMAKE_TOOLCHAIN_FILE="$PWD/packaging/toolchains/armhf.cmake"
    cmake --build build/board-host
}

expect_arm() {
    LC_ALL=C readelf -h "$1" | grep -Eq '^ *Machine: +ARM$' || fail "$1 is no program or library for 32-bit ARM"
}

{ build_library && build_host; } >build.log 2>&1 || fail "$(tail -n 40 build.log)"
expect_arm build/board-root/usr/lib/libcanbusservice.so.1
expect_arm build/board-host/minimal-host
# It finds its libraries, opens its port, and says that there is none.
said=$(LD_LIBRARY_PATH=$work/build/board-root/usr/lib timeout 60 qemu-arm -L "$CANBUS_SYSROOT" build/board-host/minimal-host \
    /dev/nothing 2>&1) || true
[[ $said == *"not open"* ]] || fail "the host does not look for its port; it says: $said"
