#!/usr/bin/env bash
# Runs the tests of the library, of the simulated box and of the link with the address, leak and undefined-behaviour
# sanitizers, and with char unsigned as on ARM.
#
# usage: run.sh
set -euo pipefail

[ $# -eq 0 ] || { echo "usage: $0" >&2; exit 2; }
root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)
build=$root/build/asan
result=$root/docs/figures/result.py
jobs=$(nproc)
say() { printf 'sanitize: %s\n' "$*"; }

"$result" begin sanitize
say "building preset asan into build/asan"
(cd "$root" && cmake --preset asan --log-level=WARNING -DCMAKE_CXX_COMPILER_LAUNCHER=ccache >/dev/null)
cmake --build "$build" -j "$jobs" --target tests/{unit,boxsim,link}/all

status=0
# The whole link continues in children of a process with threads, and gcc 12's address sanitizer does not let go of
# its allocator's locks in a fork: one child in some hundreds hangs.
for folder in unit boxsim link; do
    say "running the tests of tests/$folder"
    ctest --test-dir "$build/tests/$folder" --output-on-failure --no-tests=error -j "$((2 * jobs))" \
        --output-junit "$build/$folder.xml" --exclude-regex '^tst_wholelink$' || status=1
done
"$result" end sanitize $status --junit "$build/unit.xml" --junit "$build/boxsim.xml" \
    --junit "$build/link.xml"
exit $status
