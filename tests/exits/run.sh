#!/usr/bin/env bash
# Makes many exits in the middle of traffic and says how they were.
set -euo pipefail

usage() {
    cat <<'HELP'
tests/exits/run.sh [--build FOLDER] [--seed N] [--lanes N] [--valgrind | --asan] [COUNT]

Lets COUNT head units (1000) leave their process in the middle of traffic, in every way and at any moment. Each is
to end with its status, without a word, within a second; what does otherwise is printed with its plan, and with
its stack if it has crashed or hangs. Takes about a minute for 1000, five times that with --asan, twenty times
with --valgrind. 60 are enough for CI.

  --build FOLDER  configured already or not; build/dev, or build/asan with --asan
  --seed N        the plans of an earlier run, which has printed its seed
  --lanes N       so many head units at a time: 4
  --valgrind      each head unit under valgrind, with twenty seconds to end
  --asan          each head unit with the address sanitizer, with five seconds to end

Status 0: none was bad. 1: some were. 2: wrong arguments.
HELP
}

fail_usage() {
    printf 'exits: %s: tests/exits/run.sh --help\n' "$1" >&2
    exit 2
}

is_number() { [[ $1 =~ ^[0-9]{1,9}$ ]] || { [[ $1 =~ ^[0-9]{10}$ ]] && [ "$1" -le 4294967295 ]; }; }

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)
count=1000
instrument=
preset=dev
build=
while [ $# -gt 0 ]; do
    case $1 in
        --help | -h)
            usage
            exit 0
            ;;
        --build | --seed | --lanes)
            [ $# -ge 2 ] || fail_usage "\"$1\" wants a value"
            case $1 in
                --build) build=$2 ;;
                --seed)
                    is_number "$2" || fail_usage "\"$2\" is no seed"
                    export CANBUS_EXITS_SEED=$2
                    ;;
                --lanes)
                    { is_number "$2" && [ "$2" -gt 0 ]; } || fail_usage "\"$2\" is no number of lanes"
                    export CANBUS_EXITS_LANES=$2
                    ;;
            esac
            shift
            ;;
        --valgrind)
            instrument=$1
            export CANBUS_EXITS_WRAPPER="valgrind --quiet --error-exitcode=99 --sim-hints=lax-ioctls" CANBUS_EXITS_LIMIT_MS=20000
            ;;
        --asan)
            instrument=$1
            preset=asan
            export CANBUS_EXITS_LIMIT_MS=5000
            ;;
        *)
            { is_number "$1" && [ "$1" -gt 0 ]; } || fail_usage "\"$1\" is no number of exits"
            count=$1
            ;;
    esac
    shift
done
build=${build:-$root/build/$preset}
export CANBUS_EXITS=$count

result=$root/docs/figures/result.py
"$result" begin exits
echo "exits: building"
[ -f "$build/build.ninja" ] || (cd "$root" && cmake --preset "$preset" -B "$build" --log-level=WARNING)
cmake --build "$build" --target tst_exits -- --quiet

status=0
# The test framework's own watch is for tests that take minutes; here each exit has one of its own.
QTEST_FUNCTION_TIMEOUT=2147483647 "$build/tests/tst_exits" everyExitInTrafficIsClean \
    | grep --line-buffered '^exit\|^    \|^FAIL\|^QFATAL\|^ERROR' || status=$?
"$result" end exits "$status" "count=$count" "instrument=$instrument"
if [ "$status" -eq 0 ]; then
    echo "exits: passed"
else
    echo "exits: FAILED"
    exit 1
fi
