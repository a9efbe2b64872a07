#!/usr/bin/env bash
# Looks for data races, deadlocks and leaked threads: runs the tests, and the commands that they start, with the
# thread sanitizer on a Qt that is built with it. Then proves that it would find some: the same tests are run
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

short=
case $# in
    0) ;;
    1) [ "$1" = --short ] || usage && short=1 ;;
    *) usage ;;
esac

here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
root=$(cd -- "$here/../.." && pwd)
jobs=$(nproc)
say() { printf 'races: %s\n' "$*"; }

# need PROGRAM PACKAGE
need() {
    command -v "$1" >/dev/null || { say "$1 is missing: package $2" >&2 && exit 1; }
}
need clang++-14 clang-14
need llvm-symbolizer-14 llvm-14
need python3 python3

# One Qt for each version of Qt and of the compiler.
qt_folder() {
    local qt
    qt=$(dpkg-query -W -f '${source:Version}' libqt5core5a)
    echo "${XDG_CACHE_HOME:-$HOME/.cache}/canbusservice/qt-tsan/${qt//[^[:alnum:].-]/_}-clang-$(clang++-14 -dumpversion)"
}

# build FOLDER TARGET OPTION...
build() {
    local folder=$root/build/$1 target=$2
    shift 2
    cmake -S "$root" -B "$folder" -G Ninja --log-level=WARNING -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCANBUS_SANITIZE=thread \
        -DCANBUS_THREAD_QT="$qt" -DCANBUS_LINK_WIDGETS=OFF -DCANBUS_BUILD_TESTS=ON "$@"
    cmake --build "$folder" -j "$jobs" --target "$target"
}

# run FOLDER OPTION...: the tests, with their reports in FOLDER/reports. The tests of the dissector have no threads,
# and Python.
run() {
    local folder=$root/build/$1
    shift
    rm -rf -- "$folder/reports"
    mkdir -p -- "$folder/reports"
    ctest --test-dir "$folder" --output-on-failure --no-tests=error -j "$jobs" -E '^tst_dissector_' "$@"
}

start=$SECONDS
# took WHAT: how long that was
took() {
    say "$1: $((SECONDS - start)) s"
    start=$SECONDS
}

qt=$(qt_folder)
"$here/build-qt.sh" "$qt"
took "Qt with the thread sanitizer"

threads=(-L '^threads$')
tests=()
target=all
if [ "$short" ]; then
    tests=("${threads[@]}")
    target=tests_with_threads
fi
say "building the tests with the thread sanitizer"
build races "$target"
took "building"

say "running the tests"
status=0
run races "${tests[@]}" || status=1
took "running the tests"
"$here/reports.py" "$root/build/races/reports" || status=1

say "the same on a library that lacks three locks"
build races-planted tests_with_threads -DCANBUS_PLANT_RACES=ON
took "building it"
# Here they may fail in any way: the reports are what counts.
run races-planted "${threads[@]}" >"$root/build/races-planted/tests.log" 2>&1 || true
took "running the tests on it"
"$here/reports.py" --planted "$root/build/races-planted/reports" || status=1

if [ $status -ne 0 ]; then
    say "FAILED: see above"
    exit 1
fi
say "no races, and the planted ones are found"
