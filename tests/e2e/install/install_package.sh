#!/usr/bin/env bash
# Installs the package, moves it, and uses it as a host's developer would: the files, the exported names, a host
# built by find_package and by pkg-config, and a value of the installed box in that host's output.
#
# install_package.sh CMAKE SOURCE_DIR BUILD_DIR CONFIG CXX [LIST...]: in BUILD_DIR/install-check, which it replaces.
# The lists name what this build installs beyond the runtime and the development files.
set -euo pipefail

cmake=$1 source=$2 build=$3 config=$4 cxx=$5
further_lists=("${@:6}")
work=$build/install-check
prefix=$work/moved
here=$source/tests/e2e/install
children=()
compile=("$cxx" -std=c++17)
unset LD_LIBRARY_PATH DESTDIR

# For another machine: what runs its programs, and where the compiler and pkg-config find its files.
emulator=(${CANBUS_EMULATOR:+"$CANBUS_EMULATOR"})
if [ ${#emulator[@]} -gt 0 ]; then
    libraries=$CANBUS_SYSROOT/usr/lib/$("$cxx" -print-multiarch)
    compile+=("--sysroot=$CANBUS_SYSROOT" "-Wl,-rpath-link,$libraries")
    export PKG_CONFIG_SYSROOT_DIR=$CANBUS_SYSROOT PKG_CONFIG_LIBDIR=$libraries/pkgconfig
fi

fail() {
    printf 'install_package: %s\n' "$*" >&2
    exit 1
}

end_children() {
    local child
    for child in "${children[@]}"; do
        kill "$child" 2>/dev/null || true
        wait "$child" 2>/dev/null || true
    done
    children=()
}
trap end_children EXIT

# expect_files FOLDER LIST...: the folder holds exactly what the lists name.
expect_files() {
    local folder=$1
    shift
    diff -u --label expected --label installed \
        <(sed "s/@config@/${config,,}/" "$@" | LC_ALL=C sort) \
        <(cd "$folder" && find . ! -type d -printf '%P\n' | LC_ALL=C sort) \
        || fail "$folder holds other files than expected"
}

install_and_move() {
    rm -rf "$work"
    mkdir -p "$work"
    "$cmake" --install "$build" --prefix "$work/runtime" --component Runtime >/dev/null
    expect_files "$work/runtime" "$here/runtime.txt"
    "$cmake" --install "$build" --prefix "$work/installed" >/dev/null
    mv "$work/installed" "$prefix"
    expect_files "$prefix" "$here/runtime.txt" "$here/development.txt" "${further_lists[@]}"
}

# dynamic_entry FILE NAME: such as SONAME
dynamic_entry() { LC_ALL=C readelf -d "$1" | sed -nE "s/.*\($2\).*\[(.*)\]$/\1/p"; }

expect_entry() {
    local found
    found=$(dynamic_entry "$prefix/$1" "$2")
    [ "$found" = "$3" ] || fail "$1 has $2 \"$found\", not \"$3\""
}

expect_names_and_paths() {
    expect_entry lib/libcanbusservice.so SONAME libcanbusservice.so.1
    # The single quotes are meant: the loader expands it.
    # shellcheck disable=SC2016
    expect_entry lib/libcanbusservice.so RUNPATH '$ORIGIN'
    local command
    for command in canbus-boxsim canbus-monitor; do
        # shellcheck disable=SC2016
        expect_entry "bin/$command" RUNPATH '$ORIGIN/../lib'
        "${emulator[@]}" "$prefix/bin/$command" --version >/dev/null || fail "$command does not run where it is installed"
    done
}

# Only the classes of the interface are visible, the line that their log macro makes, and the facade's stream
# operator; weak instantiations of the standard library are nobody's interface.
expect_exports() {
    local classes='CanBusPlayer|CanBusDataMap|CanBusReadBuff|CanbusProtocol|CanbusTickThread|FrameDataFormat'
    classes+='|LinkFigures|LinkHealth|SerialPort|VelCanBusProtocol'
    classes+='|VelClimateGroupCmd|VelGaugesGroupCmd|VelParkingGroupCmd|VelVehicleGroupCmd'
    local names strangers
    names=$(nm -DC --defined-only "$prefix/lib/libcanbusservice.so" | cut -d ' ' -f 2-)
    grep -q '^. canbus::CanBusPlayer::staticMetaObject$' <<<"$names" || fail "the facade is not exported"
    strangers=$(grep -vE \
        -e "^. canbus::($classes)::" \
        -e "^. (vtable|typeinfo|typeinfo name) for canbus::($classes)$" \
        -e '^T canbus::logging::Line::' \
        -e '^T operator<<\(QDebug, C::DSPLState\)$' \
        -e '^[WVu] (typeinfo for |typeinfo name for |vtable for )?std::' \
        -e '^[BD] (__bss_start|_edata|_end)$' <<<"$names") || true
    [ -z "$strangers" ] || fail "exported, and no part of the interface:"$'\n'"$strangers"
}

# pkg-config takes it that all it finds lies in the other machine's root, and this package does not.
flags() {
    local found
    found=$(PKG_CONFIG_PATH=$prefix/lib/pkgconfig pkg-config "$@" canbusservice)
    printf '%s\n' "${found//"${PKG_CONFIG_SYSROOT_DIR:-}$prefix"/"$prefix"}"
}

build_by_package() {
    "$cmake" -S "$source/examples/minimal-host" -B "$work/by-package" -G Ninja \
        -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$cxx" >"$work/by-package.log" 2>&1 || fail "$(cat "$work/by-package.log")"
    "$cmake" --build "$work/by-package" >>"$work/by-package.log" 2>&1 || fail "$(cat "$work/by-package.log")"
}

build_by_flags() {
    mkdir "$work/by-flags"
    # shellcheck disable=SC2046 # the flags are words
    "${compile[@]}" -o "$work/by-flags/minimal-host" "$source/examples/minimal-host/main.cpp" \
        $(flags --cflags --libs)
}

# Each installed header compiles with nothing before it.
expect_headers_stand_alone() {
    local header
    (cd "$prefix/include/canbusservice" && find . -name '*.h' -printf '%f\n') | while read -r header; do
        # shellcheck disable=SC2046 # the flags are words
        "${compile[@]}" -fsyntax-only $(flags --cflags) -x c++ - <<<"#include <$header>" \
            || fail "$header does not stand alone"
    done
}

# next_line SECONDS PATTERN: reads stdin up to a line that begins so; false when none does in that time.
next_line() {
    local line end=$((SECONDS + $1))
    while [ "$SECONDS" -lt "$end" ] && IFS= read -r -t "$1" line; do
        [[ $line != "$2"* ]] || return 0
    done
    return 1
}

# expect_climate PROGRAM: it prints a temperature that the installed box reports.
expect_climate() {
    local box host
    exec {box}< <(exec "${emulator[@]}" "$prefix/bin/canbus-boxsim" --pty "$work/box" 2>"$work/box.log" </dev/null)
    children+=($!)
    next_line 60 "ready " <&"$box" || fail "the box was not ready: $(cat "$work/box.log")"
    exec {host}< <(exec "${emulator[@]}" "$1" "$work/box" 2>"$work/host.log" </dev/null)
    children+=($!)
    next_line 60 "main zone: " <&"$host" || fail "$1 printed no temperature: $(tail "$work/host.log")"
    end_children
    exec {box}<&- {host}<&-
}

install_and_move
expect_names_and_paths
expect_exports
expect_headers_stand_alone
build_by_package
expect_climate "$work/by-package/minimal-host"
build_by_flags
LD_LIBRARY_PATH=$prefix/lib expect_climate "$work/by-flags/minimal-host"
