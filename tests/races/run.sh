#!/usr/bin/env bash
# Looks for data races, deadlocks and leaked threads: runs the tests, and the commands that they start, with the
# thread sanitizer on a Qt that is built with it. Then proves that it would find some: a few of the tests are run
# once more on a library that lacks three locks, and all three must be reported.
#
# usage: run.sh [--short]
#   --short  only the tests that make threads of their own, and some of the commands
#
# The first run builds Qt (tests/races/build-qt.sh), into a cache folder outside the tree.
set -euo pipefail

usage() {
    echo "usage: $0 [--short]" >&2
    exit 2
}

is_short=false
case $# in
    0) ;;
    1) [ "$1" = --short ] || usage && is_short=true ;;
    *) usage ;;
esac

here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
root=$(cd -- "$here/../.." && pwd)
folder=$root/build/races
jobs=$(nproc)
say() { printf 'races: %s\n' "$*"; }

# need PROGRAM PACKAGE
need() {
    command -v "$1" >/dev/null || { say "$1 is missing: package $2" >&2 && exit 1; }
}
need clang++-14 clang-14
need llvm-symbolizer-14 llvm-14
need python3 python3

# One Qt for each version of Qt, of the compiler, and of the way it is built.
qt_folder() {
    local qt recipe
    qt=$(dpkg-query -W -f '${source:Version}' libqt5core5a)
    recipe=$(cksum <"$here/build-qt.sh")
    printf '%s/canbusservice/qt-tsan/%s-clang-%s-%s\n' "${XDG_CACHE_HOME:-$HOME/.cache}" \
        "${qt//[^[:alnum:].-]/_}" "$(clang++-14 -dumpversion)" "${recipe%% *}"
}

# build TARGET...
# The commands' resources are not compressed: this Qt may lack what the system's compresses them by.
# Neither QML module nor demo: this Qt has no Quick.
build() {
    cmake -S "$root" -B "$folder" -G Ninja --log-level=WARNING -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCANBUS_SANITIZE=thread \
        -DCANBUS_THREAD_QT="$qt" -DCANBUS_PLANT_RACES=ON -DCANBUS_LINK_WIDGETS=OFF -DCANBUS_BUILD_TESTS=ON \
        -DCMAKE_AUTORCC_OPTIONS=--no-compress
    cmake --build "$folder" -j "$jobs" --target "$@"
}

# run REPORTS OPTION...: the tests, with their reports in that folder. Most tests name theirs themselves
# (watch.cmake); those that are no QtTest programs are named by the program. The tests wait more than they work.
run() {
    local reports=$1
    shift
    rm -rf -- "$folder/reports" "$reports"
    mkdir -p -- "$folder/reports"
    local status=0
    LD_LIBRARY_PATH=$qt/lib TSAN_OPTIONS="include=$here/options:log_path=$folder/reports/others:log_exe_name=1" \
        ctest --test-dir "$folder" --output-on-failure --no-tests=error -j "$((2 * jobs))" \
        --output-junit "$folder/tests.xml" "$@" || status=1
    [ "$reports" = "$folder/reports" ] || mv -- "$folder/reports" "$reports"
    return $status
}

start=$SECONDS
# took WHAT: how long that was
took() {
    say "$1: $((SECONDS - start)) s"
    start=$SECONDS
}

"$root/docs/figures/result.py" begin races
qt=$(qt_folder)
"$here/build-qt.sh" "$qt"
took "Qt with the thread sanitizer"

# The tests of the dissector have no threads, and Python.
tests=(-LE '^planted$' -E '^tst_dissector_')
targets=(all)
if $is_short; then
    tests=(-L '^threads$')
    targets=(tests_with_threads)
fi
say "building the tests with the thread sanitizer"
build "${targets[@]}" tests_with_planted_races
took "building"

say "some of the tests on a library that lacks three locks"
status=0
# Here they may fail in any way: the reports are what counts.
run "$folder/reports-planted" -L '^planted$' >"$folder/planted.log" 2>&1 || true
took "running them"
are_planted_found=true
"$here/reports.py" --planted "$folder/reports-planted" || are_planted_found=false

say "running the tests"
run "$folder/reports" "${tests[@]}" || status=1
took "running the tests"
"$here/reports.py" "$folder/reports" | tee "$folder/reports.txt" || status=1
$are_planted_found || status=1
"$root/docs/figures/result.py" end races $status "short=$is_short" "planted_found=$are_planted_found" \
    "reports=$(sed -nE 's/^([0-9]+) reports of .*/\1/p' "$folder/reports.txt")" --junit "$folder/tests.xml"

if [ $status -ne 0 ]; then
    say "FAILED: see above"
    exit 1
fi
say "no races, and the planted ones are found"
