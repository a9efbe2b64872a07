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
arguments=()
jobs=$(nproc)
while [ $# -gt 0 ]; do
    case $1 in
        --help | -h) usage && exit 0 ;;
        --from | --hours | --jobs)
            is_number "${2:-}" || fail "$1 takes a number from 1 on, and \"${2:-}\" was given"
            if [ "$1" = --jobs ]; then jobs=$2; else arguments+=("$1" "$2"); fi
            shift
            ;;
        *)
            is_number "$1" || fail "\"$1\" is no number of seeds: see tests/link/run.sh --help"
            arguments+=("$1")
            ;;
    esac
    shift
done

[ -e "$build/build.ninja" ] || cmake -S "$root" -B "$build" --preset dev --log-level=WARNING
cmake --build "$build" -j "$(nproc)" --target simulate-link
exec nice -n 5 "$build/tests/simulate-link" --jobs "$jobs" "${arguments[@]}"
