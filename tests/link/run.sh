#!/usr/bin/env bash
# Runs the whole link in virtual time for many seeds: see "The simulated link" in docs/testing.md.
set -euo pipefail

usage() {
    cat <<'USAGE'
tests/link/run.sh [SEEDS] [--from N] [--jobs N]: a minute of the whole link for each seed, with faults of its own.
tests/link/run.sh --hours N [--from SEED]: so many hours of one seed, with a look at the memory in each.
CANBUS_SIM_SEED=N tests/link/run.sh: the minute of this seed, with all that happens in simulated-link-N.trace.

  SEEDS      how many seeds; 10000 by default, two to three minutes on two cores
  --from N   the first seed; 1 by default
  --jobs N   so many at a time; all cores by default
  --hours N  24 take half a minute

For a short run, 500 seeds take ten seconds.
USAGE
}

fail() {
    printf 'simulated link: %s\n' "$1" >&2
    exit 2
}

is_number() { [[ $1 =~ ^[1-9][0-9]{0,8}$ ]]; }

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)
build=${CANBUS_SIM_BUILD:-$root/build/dev}
seeds=10000
hours=
from=1
jobs=$(nproc)
while [ $# -gt 0 ]; do
    case $1 in
        --help | -h) usage && exit 0 ;;
        --from | --hours | --jobs)
            is_number "${2:-}" || fail "$1 takes a number from 1 on, and \"${2:-}\" was given"
            declare "${1#--}=$2"
            shift
            ;;
        *)
            is_number "$1" || fail "\"$1\" is no number of seeds: see tests/link/run.sh --help"
            seeds=$1
            ;;
    esac
    shift
done

[ -e "$build/build.ninja" ] || cmake -S "$root" -B "$build" --preset dev --log-level=WARNING
cmake --build "$build" -j "$(nproc)" --target simulate-link
simulate=(nice -n 5 "$build/tests/simulate-link" --from "$from" --jobs "$jobs")
[ -z "${CANBUS_SIM_SEED:-}" ] || exec "${simulate[@]}"

# figure TEXT: the number that stands in place of N in a line of the output; nothing where there is no such line.
figure() { sed -nE "s/^simulated link: (good|FAILED): ${1/N/([0-9]+)}.*/\2/p" "$output"; }

proof=${hours:+hours}
proof=${proof:-simulate}
"$root/docs/figures/result.py" begin "$proof"
output=$(mktemp)
trap 'rm -f "$output"' EXIT
status=0
if [ "$hours" ]; then
    "${simulate[@]}" --hours "$hours" || status=$?
    figures=("hours=$hours")
else
    "${simulate[@]}" "$seeds" | tee "$output" || status=$?
    held=$(figure 'every rule held for N seeds')
    broken=${held:+0}
    figures=("wanted=$seeds" "seeds=${held:-$(figure '[0-9]+ of N seeds broke a rule')}"
        "broken=${broken:-$(figure 'N of [0-9]+ seeds broke a rule')}")
fi
"$root/docs/figures/result.py" end "$proof" "$status" "${figures[@]}"
exit "$status"
