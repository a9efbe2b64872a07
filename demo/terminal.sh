#!/usr/bin/env bash
# A simulated box on a pseudo-terminal and a head unit on it, both in the terminal, with a press of a button every
# few seconds. Ctrl-C ends it.
#
# usage: terminal.sh BIN [SECONDS], where BIN is the folder of the built commands
set -euo pipefail

{ [ $# -ge 1 ] && [ $# -le 2 ]; } || { echo "usage: $0 BIN [SECONDS]" >&2; exit 2; }
bin=$1
seconds=${2:-}

say() { printf 'demo: %s\n' "$*"; }

# fail MESSAGE
fail() {
    printf 'demo: %s\n' "$1" >&2
    exit 1
}

# print_lines COLOUR NAME: prints the lines of stdin under a name, and reports as an event when the program
# that writes them says that it is ready, and when it has ended.
print_lines() {
    trap '' INT # the last lines are printed too
    local line prefix
    printf -v prefix '%9s |' "$2"
    [ -z "$1" ] || prefix=$'\e['"$1m$prefix"$'\e[0m'
    while IFS= read -r line; do
        printf '%s %s\n' "$prefix" "$line"
        [[ $line != "ready "* ]] || echo ready >&"$events"
    done
    echo "$2 ended" >&"$events"
}

# start_program COLOUR NAME INPUT COMMAND...: in the background, and out of reach of the terminal's Ctrl-C, so that
# end_all ends one after the other.
start_program() {
    local colour=$1 name=$2 input=$3
    shift 3
    setsid "$@" <"$input" > >(print_lines "$colour" "$name") 2>&1 {events}>&- {buttons}>&- &
    pids+=($!)
    running=$((running + 1))
}

# next_event SECONDS: the next event of the demo in $event; false when there was none in that time.
next_event() {
    event=
    IFS= read -r -t "$1" event <&"$events" || return 1
    [[ $event != *" ended" ]] || running=$((running - 1))
}

# The head unit goes before the box: a lost line would be an error to it.
end_all() {
    trap '' INT TERM HUP
    local number before
    for ((number = ${#pids[@]} - 1; number >= 0; --number)); do
        before=$running
        kill "${pids[number]}" 2>/dev/null || continue
        while [ "$running" -eq "$before" ]; do
            next_event 5 || break
        done
        kill -KILL "${pids[number]}" 2>/dev/null || true
    done
    wait || true
    rm -rf "$folder"
}

# One press after the other, for as long as the demo runs: $1 seconds, or until Ctrl-C where that is empty.
press_buttons() {
    local presses=(climate.acBtn climate.manualTemp=21 vehicle.checkEngine gauges.Gauge2_TopLeft=true
        gauges.Gauge2_TopLeft=false parking.customControl1 climate.rearZone=true climate.rearZone=false)
    local number=0 press pause=4 end=$((SECONDS + ${1:-0}))
    while :; do
        [ -z "$1" ] || [ $((end - SECONDS)) -ge $pause ] || pause=$((end - SECONDS))
        [ "$pause" -gt 0 ] || return 0
        if next_event "$pause"; then
            [[ $event != *" ended" ]] || fail "the $event by itself"
        elif [ -z "$1" ] || [ "$SECONDS" -lt "$end" ]; then
            press=${presses[number++ % ${#presses[@]}]}
            say "pressing $press"
            echo "$press" >&"$buttons"
        fi
    done
}

box_colour='' unit_colour=''
if [ -t 1 ] && [ -z "${NO_COLOR:-}" ]; then
    box_colour=36 unit_colour=32
fi
say "a simulated box on a pseudo-terminal, and a head unit on it${seconds:+, for $seconds seconds} (Ctrl-C ends it)"
folder=$(mktemp -d)
pids=()
running=0
mkfifo "$folder/events" "$folder/buttons"
# Opened for both ways: neither opening nor writing waits for the other side, or fails when it is gone.
exec {events}<>"$folder/events" {buttons}<>"$folder/buttons"
trap end_all EXIT
trap 'exit 0' INT
trap 'exit 143' TERM
trap 'exit 129' HUP

start_program "$box_colour" box /dev/null "$bin/canbus-boxsim" --pty "$folder/box"
next_event 30 || fail "the simulated box was not ready after 30 seconds"
[ "$event" = ready ] || fail "the $event before it was ready"
start_program "$unit_colour" "head unit" "$folder/buttons" "$bin/canbus-monitor" --port "$folder/box"
press_buttons "$seconds"
