#!/usr/bin/env bash
# Runs a command on a display of its own, which nobody sees.
#
# under_xvfb.sh COMMAND...
set -euo pipefail

folder=$(mktemp -d)
number=$folder/display
: >"$number"
Xvfb -displayfd 3 -screen 0 1400x1000x24 -nolisten tcp 3>"$number" 2>"$folder/errors" &
server=$!
trap 'kill "$server" 2>/dev/null || true; rm -rf "$folder"' EXIT

# The number comes with its line's end when the display may be opened.
for ((tries = 0; tries < 300; ++tries)); do
    [ "$(wc -l <"$number")" -eq 0 ] || break
    kill -0 "$server" 2>/dev/null || break
    sleep 0.1
done
[ "$(wc -l <"$number")" -gt 0 ] || {
    echo "under_xvfb.sh: Xvfb gives no display: $(tail -n 1 "$folder/errors")" >&2
    exit 1
}
DISPLAY=":$(cat "$number")" QT_QPA_PLATFORM=xcb "$@"
