#!/usr/bin/env bash
# Runs in the fresh root that install_in_root.sh makes: installs what lies in /packages, each for itself and all
# together, uses it, and removes it.
# The first thing that is not as it should be ends it, with status 1 and what was wrong.
set -euo pipefail

work=/check
mapfile -t names < <(find /packages -name '*.deb' -printf '%f\n' | sed 's/_.*//' | sort)
commands=(canbus-boxsim canbus-headunit canbus-monitor)
export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software XDG_RUNTIME_DIR=$work/run

say() { printf 'install_in_root: %s\n' "$*"; }

fail() {
    printf 'install_in_root: %s\n' "$*" >&2
    exit 1
}

# quietly COMMAND...: its output only when it fails, and then the end.
quietly() {
    "$@" >"$work/log" 2>&1 || {
        tail -n 30 "$work/log" >&2
        fail "\"$*\" has failed"
    }
}

install_by_apt() { quietly apt-get -q -y --no-install-recommends install "$@"; }

# expect_line FILE PATTERN WHAT
expect_line() { grep -qE -e "$2" "$1" || fail "$3: no line like \"$2\" in: $(tail -n 20 "$1")"; }

# within SECONDS COMMAND...: until it succeeds; false when it does not in that time.
within() {
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$end" ] || return 1
        sleep 0.1
    done
}

start_box() {
    canbus-boxsim --pty "$work/box" >"$work/box.log" 2>&1 </dev/null &
    box=$!
    within 30 grep -q '^ready' "$work/box.log" || fail "the box is not ready: $(cat "$work/box.log")"
}

end_box() {
    kill "$box"
    wait "$box" || fail "the box has ended with status $?: $(tail "$work/box.log")"
}

# --- what each package is for ---

# check_commands COMMAND...
check_commands() {
    local command version
    version=$(dpkg-query -W -f '${Version}' libcanbusservice1)
    for command; do
        [ "$("$command" --version)" = "$command ${version%-*}" ] \
            || fail "$command --version says \"$("$command" --version)\", and its package has $version"
        "$command" --help | grep -q '^Options:' || fail "$command --help lists no options"
    done
}

check_monitor() {
    start_box
    quietly canbus-monitor --port "$work/box" --for 8 --record "$work/drive.pcapng"
    expect_line "$work/log" '^player canbusConnectStatus status=true$' "the monitor does not see the link come up"
    expect_line "$work/log" '^climate updateClimateMainTemp value=[0-9]+ Unit=[0-9]+$' "the monitor sees no temperature"
    expect_line "$work/log" '^vehicle [a-zA-Z]+ ' "the monitor sees nothing of the vehicle"
    end_box
}

check_scenarios() {
    local folder=/usr/share/canbusservice/scenarios count=0 file
    while IFS= read -r file; do
        quietly canbus-boxsim --check --scenario "$file"
        count=$((count + 1))
    done < <(find "$folder" -name '*.json' ! -name scenario.schema.json)
    [ "$count" -gt 20 ] || fail "$folder holds $count scenarios, too few"
    canbus-boxsim --print-schema | cmp - "$folder/scenario.schema.json" || fail "the schema in $folder is another one"
}

check_headunit() {
    quietly canbus-headunit --simulate --screenshot "$work/pictures"
    local page light
    for page in climate gauges vehicle parking menu link; do
        for light in day night; do
            [ "$(head -c 4 "$work/pictures/$page-$light.png" | tail -c 3)" = PNG ] \
                || fail "there is no picture $page-$light.png"
        done
    done
}

check_files() {
    local file count=0
    while IFS= read -r file; do
        [ ! -L "$file" ] || continue
        count=$((count + 1))
        ! readelf -d "$file" | grep -E 'RUNPATH|RPATH' || fail "$file has a path of its own for libraries"
        ! ldd "$file" | grep 'not found' || fail "$file lacks a library"
    done < <(dpkg -L "${names[@]}" | grep -E '/s?bin/|\.so')
    [ "$count" -ge 6 ] || fail "the packages hold $count commands and libraries, too few"
    desktop-file-validate /usr/share/applications/canbus-headunit.desktop || fail "the desktop entry is wrong"
}

# check_consumer PROGRAM: it prints a temperature that the installed box reports.
check_consumer() {
    start_box
    "$1" "$work/box" >"$work/consumer.log" 2>"$work/consumer.err" </dev/null &
    local consumer=$!
    within 30 grep -q '^main zone: ' "$work/consumer.log" \
        || fail "$1 prints no temperature: $(tail -n 5 "$work/consumer.log" "$work/consumer.err")"
    kill "$consumer"
    wait "$consumer" || true
    end_box
}

check_compiling() {
    local source=/usr/share/doc/libcanbusservice-dev/examples/minimal-host
    quietly cmake -S "$source" -B "$work/by-package"
    quietly cmake --build "$work/by-package"
    # shellcheck disable=SC2046 # the flags are words
    quietly g++ -std=c++17 -o "$work/by-flags" "$source/main.cpp" $(pkg-config --cflags --libs canbusservice)
}

check_consumers() {
    check_consumer "$work/by-package/minimal-host"
    check_consumer "$work/by-flags"
}

check_qml_module() {
    cat >"$work/module.qml" <<'QML'
import QtQuick 2.15
import CanBus 1.0
Item {
    Component.onCompleted: console.log("climate stale " + ClimateState.stale + " valid " + ClimateState.valid)
    Timer { interval: 1; running: true; onTriggered: Qt.quit() }
}
QML
    quietly timeout 60 /usr/lib/qt5/bin/qml "$work/module.qml"
    expect_line "$work/log" 'climate stale true valid false$' "the QML module is not as it should be"
}

# The monitor's recording, read with the dissector that the package brings.
check_dissector() {
    quietly tshark -r "$work/drive.pcapng" -Y canbus.climate.mainTemp -T fields -e canbus.climate.mainTemp
    expect_line "$work/log" '^[0-9]+$' "the dissector finds no temperature"
}

check_manual_pages() {
    local command
    for command in "${commands[@]}"; do
        man -P cat "$command" >"$work/page" 2>"$work/log" || fail "man $command: $(cat "$work/log")"
        expect_line "$work/page" "^NAME$" "man $command"
        expect_line "$work/page" "$command" "man $command"
    done
    expect_line "$work/page" canbus-boxsim "man canbus-monitor"
    man -P cat canbus-boxsim >"$work/page"
    expect_line "$work/page" /usr/share/canbusservice/scenarios "man canbus-boxsim does not say where scenarios are"
}

# Loads the completion as a shell on the command line does, and completes the beginning of an option.
check_bash_completion() {
    local command
    for command in "${commands[@]}"; do
        bash -c '
            source /usr/share/bash-completion/bash_completion
            _completion_loader "$1"
            complete -p "$1" || exit
            COMP_WORDS=("$1" --vers) COMP_CWORD=1 COMP_LINE="$1 --vers" COMP_POINT=$((${#1} + 7))
            "_${1//-/_}" "$1" --vers "$1"
            printf "%s\n" "${COMPREPLY[@]}"
        ' bash "$command" >"$work/log" 2>&1 || true
        expect_line "$work/log" "^complete -F _${command//-/_} $command$" \
            "bash does not load the completion of $command"
        expect_line "$work/log" '^--version$' "bash does not complete $command --vers"
    done
}

check_zsh_completion() {
    local command
    for command in "${commands[@]}"; do
        # shellcheck disable=SC2016 # zsh expands it
        zsh -fc 'autoload -Uz compinit && compinit -D -u && print -r -- $_comps[$1] && autoload +X $_comps[$1]' \
            zsh "$command" >"$work/log" 2>&1 || true
        expect_line "$work/log" "^_$command$" "zsh does not load the completion of $command"
    done
}

# --- removing ---

# Every path but those that apt, dpkg, the loader and man keep books in; and /run, which a start of the machine clears,
# with the locks of serial lines.
list_paths() {
    find / -xdev \( -path /check -o -path /packages -o -path /tmp -o -path /run -o -path /var/cache -o -path /var/log \
        -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /etc/ld.so.cache \) -prune -o -print | sort
}

purge() { quietly apt-get -q -y purge "${names[@]}"; }

# use_alone CHECK PACKAGE...: with nothing in the root but what these bring along.
use_alone() {
    local check=$1
    shift
    say "$check with $* alone"
    install_by_apt "$@"
    $check
    quietly apt-get -q -y purge "$@"
    quietly apt-get -q -y autoremove --purge
}

check_nothing_is_left() {
    purge
    local rest
    # What man has formatted is man's.
    rest=$(find / -xdev \( -path /check -o -path /packages -o -path /run -o -path /var/cache/man \) -prune \
        -o -iname '*canbus*' -print)
    [ -z "$rest" ] || fail "left after the packages were purged:"$'\n'"$rest"
    list_paths >"$work/before"
    install_by_apt /packages/*.deb
    check_commands "${commands[@]}"
    check_headunit
    list_paths >"$work/with"
    ! cmp -s "$work/before" "$work/with" || fail "the list of files tells nothing: it is the same with the packages"
    purge
    list_paths >"$work/after"
    diff -u "$work/before" "$work/after" || fail "purging the packages has left or taken the files above"
}

check_tools() {
    check_commands canbus-boxsim canbus-monitor
    check_monitor
    check_scenarios
}

mkdir -m 0700 "$XDG_RUNTIME_DIR"
quietly apt-get -q update
use_alone check_tools canbus-tools
use_alone check_headunit canbus-headunit
use_alone check_qml_module qml-module-canbus qml qml-module-qtquick2 qml-module-qtquick-window2 # what loads a screen
use_alone check_compiling libcanbusservice-dev cmake g++ make pkg-config
say "installing ${names[*]}"
install_by_apt /packages/*.deb
install_by_apt bash-completion binutils desktop-file-utils man-db tshark zsh
check_commands "${commands[@]}"
for check in check_files check_consumers check_dissector check_manual_pages check_bash_completion check_zsh_completion \
    check_nothing_is_left; do
    say "$check"
    $check
done
say "installed, used and removed: all is as it should be"
