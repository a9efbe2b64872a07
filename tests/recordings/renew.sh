#!/usr/bin/env bash
# renew.sh BIN [NAME...]: makes the recordings of the simulated box anew, with their transcripts; all of them
# without a NAME. BIN is a folder with canbus-boxsim and canbus-monitor. Read the transcripts before you commit.
set -euo pipefail

recordings=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
scenarios=$recordings/../../scenarios
if [ $# -eq 0 ]; then
    echo 'renew.sh: name the folder with the commands, for example build/dev/bin' >&2
    exit 2
fi
bin=$(cd -- "$1" && pwd)
shift

all=(handshake cold-start drive noise bad-checks cut-and-merged long-texts retransmissions given-up restart not-ready
    silence)

# By the recording's name: the options of the box and of the head unit, and what each of them is told on its
# standard input after how many seconds.
choose() {
    box=()
    head_unit=()
    steering=()
    presses=()
    case $1 in
    handshake) head_unit=(--for 4) ;;
    cold-start)
        box=(--scenario "$scenarios/cold-start.json" --speed 2)
        head_unit=(--for 18)
        ;;
    drive)
        # Ten seconds with the link up, and twenty of the drive: the menu begins at its twelfth.
        box=(--scenario "$scenarios/builtin-drive.json" --speed 2)
        head_unit=(--for 12)
        ;;
    noise)
        box=(--seed 3 --noise 100)
        head_unit=(--for 8 --call climate.acBtn)
        ;;
    bad-checks)
        box=(--seed 4 --fault wrongChecks=0.2 --fault nackAnswers=0.3)
        head_unit=(--for 8 --call climate.acBtn --call gauges.settings --call vehicle.settings)
        ;;
    cut-and-merged)
        box=(--fault splitRound=true --fault mergeMs=60)
        head_unit=(--for 6 --call climate.acBtn)
        ;;
    long-texts)
        box=(--scenario "$scenarios/long-texts.json" --speed 2)
        # 159 is the byte that is doubled.
        head_unit=(--for 12 --call climate.manualTemp=159 --call 'player.onMenuPress=159,159,159')
        ;;
    retransmissions)
        box=(--seed 6 --drop-answers 0.5)
        head_unit=(--for 8 --call climate.acBtn --call gauges.Gauge3_TopRight=true --call vehicle.settings
            --call parking.customControl1 --call climate.acBtn)
        ;;
    given-up)
        head_unit=(--for 14)
        steering=(5 fault.dropAnswers=1 5 fault.dropAnswers=0)
        presses=(6 climate.acBtn 6 vehicle.settings)
        ;;
    restart)
        box=(--scenario "$scenarios/faults/restart.json" --speed 2)
        head_unit=(--for 9)
        ;;
    not-ready)
        box=(--scenario "$scenarios/faults/not-ready.json" --speed 2)
        head_unit=(--for 10)
        ;;
    silence)
        box=(--scenario "$scenarios/faults/silence.json")
        head_unit=(--for 26)
        ;;
    *)
        echo "renew.sh: $1 is none of ${all[*]}" >&2
        exit 2
        ;;
    esac
}

# tell SECONDS LINE...
tell() {
    while [ $# -gt 0 ]; do
        sleep "$1"
        echo "$2"
        shift 2
    done
}

# Whether a run and what is read of it are the same. Left out: what timers sample, commands, which are read when they
# were first sent, and the line that only a run has.
compare() {
    local other='updateGaugeValue|updateGaugeShift|updateVehicleTireText|sendCmdData|portOpened'
    diff <(grep -Ev "$other" "$1") <(grep -Ev "$other" "$2") >&2
}

renew() {
    local name=$1 box head_unit steering presses box_pid folder
    choose "$name"
    folder=$(mktemp -d)
    "$bin/canbus-boxsim" --pty "$folder/line" "${box[@]}" >"$folder/reports.txt" < <(tell "${steering[@]}") &
    box_pid=$!
    until [ -e "$folder/line" ]; do
        kill -0 "$box_pid"
        sleep 0.1
    done
    # The name of the port is in the recording: it is the same wherever that is made.
    (
        cd "$folder"
        "$bin/canbus-monitor" --port ./line --record "$name.pcapng" "${head_unit[@]}" >live.txt \
            < <(tell "${presses[@]}")
    )
    kill "$box_pid" 2>/dev/null || true # its scenario may have ended
    wait "$box_pid"
    "$bin/canbus-monitor" --read "$folder/$name.pcapng" >"$folder/$name.txt"
    compare "$folder/live.txt" "$folder/$name.txt" || echo "$name: read otherwise than it ran" >&2
    mv "$folder/$name.pcapng" "$folder/$name.txt" "$recordings"
    rm -r "$folder"
    echo "$name: $(stat -c %s "$recordings/$name.pcapng") bytes, $(wc -l <"$recordings/$name.txt") lines"
}

[ $# -gt 0 ] || set -- "${all[@]}"
for name in "$@"; do
    renew "$name"
done
