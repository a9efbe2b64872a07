#!/usr/bin/env bash
# Measures which branches of src/ the unit and link tests take, and fails below what is asked for: 95 % over all, and
# every one in the receive path, the send queue and the decoders.
#
# usage: run.sh
#
# A line that no test can reach is marked GCOVR_EXCL_LINE or GCOVR_EXCL_BR_LINE, with its reason beside it. The
# report, line by line, is build/coverage/report/index.html.
set -euo pipefail

[ $# -eq 0 ] || { echo "usage: $0" >&2; exit 2; }
here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
root=$(cd -- "$here/../.." && pwd)
build=$root/build/coverage
jobs=$(nproc)
# Without branches that no source line has: to where an exception would lead, and around the first use of a static
# object. And without counts that get lost between threads.
flags="-fno-exceptions -fno-threadsafe-statics -fprofile-update=atomic"
say() { printf 'coverage: %s\n' "$*"; }

fail() {
    say "FAILED: $*"
    exit 1
}

command -v gcovr >/dev/null || fail "gcovr is missing: package gcovr"

result=$root/docs/figures/result.py
"$result" begin coverage
say "building with gcov's counters"
# Those of the simulated box do not count: they are about the other side. What the commands use of src is tested with
# them.
mapfile -t tests < <(find "$root/tests/unit" "$root/tests/link" -name 'tst_*.cpp' ! -name 'tst_boxsim_*' -printf '%f\n' \
    | sed 's/\.cpp$//' | sort)
tests+=(tst_monitor_descriptors tst_monitor_virtualclock)
cmake -S "$root" -B "$build" -G Ninja --log-level=WARNING -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="$flags" \
    -DCANBUS_COVERAGE=ON -DCANBUS_BUILD_TESTS=ON -DCMAKE_CXX_COMPILER_LAUNCHER=ccache
cmake --build "$build" -j "$jobs" --target "${tests[@]}"
# Counters of an earlier run would count for this one.
find "$build" -name '*.gcda' -delete

say "running the tests"
# Some are about time, and without optimisation on a busy machine may need a second chance: ./dev test gives none.
ctest --test-dir "$build" --output-on-failure --no-tests=error -j "$jobs" --repeat until-pass:2 \
    -R "^($(IFS='|' && echo "${tests[*]}"))\$" || { "$result" end coverage 1 && fail "a test has failed"; }

say "counting"
mkdir -p "$build/report"
gcovr --root "$root" --object-directory "$build" --filter "$root/src/" --exclude-unreachable-branches -j "$jobs" \
    --json "$build/report/counts.json" "$build/src" "$build/tests"

# counted FILE NAME OPTION...: prints the table of what these options of gcovr choose, with the sums in that file of
# the report; false below what they ask for.
counted() {
    local sums=$build/report/$1
    say "$2"
    shift 2
    gcovr --root "$root" --add-tracefile "$build/report/counts.json" --branches --txt - --json-summary "$sums" "$@"
}

status=0
# A template is counted as its least tested copy, so the rule by which an item is news is left out: its callers count.
counted core.json "receive path, send queue and decoders: every branch and line" --filter "$root/src/link/(?!linkhealth)" \
    --filter "$root/src/groups/" --filter "$root/src/support/(bytes|text)" \
    --fail-under-branch 100 --fail-under-line 100 || status=1
counted src.json "all of src: at least 95 % of the branches" --fail-under-branch 95 || status=1
gcovr --root "$root" --add-tracefile "$build/report/counts.json" --html-details "$build/report/index.html"

# figure PART: the branches in the sums of that part, as arguments of result.py.
figure() {
    sed -nE "s/.*\"branch_covered\": ([0-9]+), .*\"branch_total\": ([0-9]+), \"files\".*/$1.taken=\1 $1.branches=\2/p" \
        "$build/report/$1.json"
}
read -ra figures <<<"$(figure core) $(figure src)"
"$result" end coverage $status "${figures[@]}"
[ $status -eq 0 ] || fail "the lines are in build/coverage/report/index.html"
say "passed"
