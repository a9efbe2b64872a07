#!/usr/bin/env bash
# Measures the library and prints one table, beside the goals: see docs/performance.md.
set -euo pipefail

here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
root=$(cd -- "$here/.." && pwd)
# Debug information costs nothing at run time; a sanitizer or gcov's counters would be measured too.
build=${CANBUS_BENCH_BUILD:-$root/build/release}

targets=(bench/all canbus-boxsim canbus-monitor)
for argument; do
    case $argument in
        --help | -h) exec python3 -B "$here/bench.py" --help ;;
        --counts) targets=(bench-counts bench-facts) ;;
    esac
done
[ -e "$build/build.ninja" ] || cmake -S "$root" -B "$build" --preset release --log-level=WARNING
cmake -S "$root" -B "$build" --log-level=WARNING -DCANBUS_BUILD_BENCH=ON >/dev/null
cmake --build "$build" -j "$(nproc)" --target "${targets[@]}" >/dev/null
exec python3 -B "$here/bench.py" --build "$build" "$@"
