#!/usr/bin/env bash
# Counts the frames that the head unit draws at rest and for gauge updates, page by page. Status 1: more is
# drawn than has changed.
#
# frames.sh BUILD_FOLDER [--rest MS] [--changes N]
set -euo pipefail

[ $# -ge 1 ] || {
    echo "frames.sh: name a build folder with CANBUS_BUILD_DEMO, for example build/dev" >&2
    exit 2
}
build=$1
shift
program=$build/bin/canbus-headunit-frames
[ -x "$program" ] || {
    echo "frames.sh: there is no $program: configure with -DCANBUS_BUILD_DEMO=ON and build canbus-headunit-frames" >&2
    exit 2
}
# By the emulator where the program is for another machine.
QT_QPA_PLATFORM=offscreen exec ${CANBUS_EMULATOR:+"$CANBUS_EMULATOR"} "$program" "$@"
