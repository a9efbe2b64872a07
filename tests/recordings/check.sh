#!/usr/bin/env bash
# check.sh RECORDING MONITOR...: whether the command MONITOR reads RECORDING, a path without its ending, as its
# transcript says.
set -euo pipefail

recording=$1
shift
for file in "$recording.pcapng" "$recording.txt"; do
    if [ ! -e "$file" ]; then
        echo "$file is missing: a recording and its transcript go together" >&2
        exit 1
    fi
done
read_anew=$(mktemp)
trap 'rm -f "$read_anew"' EXIT
LC_ALL=C.UTF-8 "$@" --read "$recording.pcapng" >"$read_anew"
if ! diff -U 3 --label "$recording.txt" --label 'as it is read now' "$recording.txt" "$read_anew"; then
    echo "$recording.pcapng is read otherwise than before. If that is right: $* --read it, and commit the transcript" >&2
    exit 1
fi
