#!/usr/bin/env bash
# Measures which branches of src/ the tests take, and fails below what is asked for: 95 % over all, and every one in
# the receive path, the send queue and the decoders.
#
# usage: run.sh
#
# Branches that only an exception takes do not count, nor those that no source line has. A line that cannot be
# reached by a test is marked GCOVR_EXCL_LINE or GCOVR_EXCL_BR_LINE, with its reason beside it. The report, line by
# line, is build/coverage/report/index.html.
set -euo pipefail

[ $# -eq 0 ] || { echo "usage: $0" >&2; exit 2; }
here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
root=$(cd -- "$here/../.." && pwd)
build=$root/build/coverage
jobs=$(nproc)
say() { printf 'coverage: %s\n' "$*"; }

command -v gcovr >/dev/null || { say "gcovr is missing: package gcovr" >&2 && exit 1; }

say "building with gcov's counters"
cmake -S "$root" -B "$build" -G Ninja --log-level=WARNING -DCMAKE_BUILD_TYPE=Debug -DCANBUS_COVERAGE=ON \
    -DCANBUS_BUILD_TESTS=ON -DCMAKE_CXX_COMPILER_LAUNCHER=ccache
cmake --build "$build" -j "$jobs" --target tests/unit/all tests/link/all
# Counters of an earlier run would count for this one.
find "$build" -name '*.gcda' -delete

say "running the tests"
for layer in unit link; do
    ctest --test-dir "$build/tests/$layer" --output-on-failure --no-tests=error -j "$jobs" -E '^tst_boxsim_'
done

cd "$root"
common=(--root "$root" --object-directory "$build" --filter "$root/src/" --branches --exclude-throw-branches
    --exclude-unreachable-branches -j "$jobs" "$build")

# branches NAME LEAST FILTER...: prints the table of these sources; false below LEAST percent.
branches() {
    local name=$1 least=$2 filters=()
    shift 2
    for filter; do filters+=(--filter "$root/src/$filter"); done
    say "$name: at least $least % of branches"
    gcovr --root "$root" --object-directory "$build" --branches --exclude-throw-branches \
        --exclude-unreachable-branches -j "$jobs" "${filters[@]}" --fail-under-branch "$least" "$build"
}

mkdir -p "$build/report"
gcovr "${common[@]}" --html-details "$build/report/index.html" >/dev/null
status=0
branches "all of src" 95 "" || status=1
branches "receive path, send queue and decoders" 100 link/receivepath link/frameformat link/sendqueue \
    link/categorydispatch groups/ support/bytes support/text || status=1
if [ $status -ne 0 ]; then
    say "FAILED: the lines are in $build/report/index.html"
    exit 1
fi
say "enough"
