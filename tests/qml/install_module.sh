#!/usr/bin/env bash
# Installs everything, moves it, and uses the QML module as a UI developer would: the module's files, the plugin
# that finds the library from where it lies, the smallest QML screen built against the package and run on a
# simulated box, and what that says where the module is missing.
#
# install_module.sh CMAKE SOURCE_DIR BUILD_DIR QML_DIR QMLPLUGINDUMP CXX: in BUILD_DIR/qml-install-check, which it
# replaces. QML_DIR is the module folder's place below the prefix.
set -euo pipefail

cmake=$1 source=$2 build=$3 qml_dir=$4 dump=$5 cxx=$6
work=$build/qml-install-check
prefix=$work/moved
module=$prefix/$qml_dir/CanBus
children=()
emulator=(${CANBUS_EMULATOR:+"$CANBUS_EMULATOR"}) # runs what is installed where it is for another machine
unset LD_LIBRARY_PATH DESTDIR QML2_IMPORT_PATH
export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software QML_DISABLE_DISK_CACHE=1
export XDG_RUNTIME_DIR=$work/runtime

fail() {
    printf 'install_module: %s\n' "$*" >&2
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

install_and_move() {
    rm -rf "$work"
    mkdir -p "$work"
    mkdir -m 700 "$XDG_RUNTIME_DIR"
    "$cmake" --install "$build" --prefix "$work/installed" >/dev/null
    mv "$work/installed" "$prefix"
}

expect_files() {
    local file
    for file in libcanbusqmlplugin.so plugins.qmltypes qmldir; do
        [ -f "$module/$file" ] || fail "$qml_dir/CanBus/$file is not installed"
    done
}

# The tool loads the plugin, which has nothing but its own path to find the library by. Another machine's tool starts
# a second one, which no emulator is there for.
expect_types() {
    [ ${#emulator[@]} -eq 0 ] || return 0
    "$source/qml/qmltypes.sh" --check "$dump" "$prefix/$qml_dir" "$module/plugins.qmltypes" \
        || fail "the installed plugin does not load, or has other types than its qmltypes"
}

build_screen() {
    {
        "$cmake" -S "$source/examples/minimal-qml" -B "$work/screen" -G Ninja \
            -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$cxx" &&
            "$cmake" --build "$work/screen"
    } >"$work/screen.log" 2>&1 || fail "$(cat "$work/screen.log")"
}

# expect_complaint IMPORT_PATH LINE: the screen ends with status 1 and this line alone.
expect_complaint() {
    local status=0 said
    said=$(QML2_IMPORT_PATH=$1 timeout 60 "${emulator[@]}" "$work/screen/minimal-qml" /dev/null 2>&1) || status=$?
    [ "$status" -eq 1 ] || fail "without a module the screen ends with status $status: $said"
    [ "$said" = "$2" ] || fail "without a module the screen says \"$said\", not \"$2\""
}

expect_complaints() {
    local hint="(CanBus is looked for in Qt's QML folder and in QML2_IMPORT_PATH)"
    expect_complaint "" "minimal-qml: module \"CanBus\" is not installed $hint"
    mkdir -p "$work/half/CanBus"
    cp "$module/qmldir" "$work/half/CanBus"
    expect_complaint "$work/half" "minimal-qml: module \"CanBus\" plugin \"canbusqmlplugin\" not found $hint"
}

# next_line SECONDS PATTERN: reads stdin up to a line that holds it; false when none does in that time.
next_line() {
    local line end=$((SECONDS + $1))
    while [ "$SECONDS" -lt "$end" ] && IFS= read -r -t "$1" line; do
        [[ $line != *"$2"* ]] || return 0
    done
    return 1
}

# The box of the same package sees the screen's link come up.
expect_link() {
    local box
    exec {box}< <(exec "${emulator[@]}" "$prefix/bin/canbus-boxsim" --pty "$work/box" --json 2>"$work/box.log" </dev/null)
    children+=($!)
    next_line 60 "ready " <&"$box" || fail "the box was not ready: $(cat "$work/box.log")"
    QML2_IMPORT_PATH=$prefix/$qml_dir "${emulator[@]}" "$work/screen/minimal-qml" "$work/box" >"$work/screen.log" 2>&1 </dev/null &
    children+=($!)
    next_line 60 '"event":"linkUp"' <&"$box" || fail "the link did not come up: $(tail "$work/screen.log")"
    end_children
    exec {box}<&-
}

install_and_move
expect_files
expect_types
build_screen
expect_complaints
expect_link
