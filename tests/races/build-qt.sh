#!/usr/bin/env bash
# Builds Qt Core and Test with the thread sanitizer, once: the system's Qt is not instrumented, and every lock of
# it would look like a race.
#
# usage: build-qt.sh FOLDER
#   FOLDER  gets bin, include and lib; it is complete when it holds the file "complete", and is left alone then
#
# Takes 500 MB of disk while it runs. The source comes from the Debian archives that this machine has set up, by
# lists of this script's own: the system's are not touched.
set -euo pipefail

[ $# -eq 1 ] || { echo "usage: $0 FOLDER" >&2; exit 2; }
folder=$(mkdir -p -- "$1" && cd -- "$1" && pwd)
[ ! -e "$folder/complete" ] || exit 0
jobs=$(nproc)
work=$folder/work
rm -rf -- "$work"
mkdir -p -- "$work/lists/partial" "$work/cache/archives/partial"

# Every archive that packages come from has their sources too.
source_list() {
    local file
    for file in /etc/apt/sources.list.d/*.sources; do
        [ ! -e "$file" ] || sed -E 's/^(Types:).*/\1 deb-src/' "$file"
        echo
    done >"$work/all.sources"
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ ! -e "$file" ] || sed -nE 's/^deb( |\t)/deb-src\1/p' "$file"
    done >"$work/all.list"
}

mkdir -p "$work/sources.d"
source_list
mv "$work/all.sources" "$work/sources.d/"
apt=(-q -o "Dir::Etc::sourcelist=$work/all.list" -o "Dir::Etc::sourceparts=$work/sources.d"
    -o "Dir::State::lists=$work/lists" -o "Dir::Cache=$work/cache" -o Debug::NoLocking=1
    -o APT::Sandbox::User= -o Acquire::Languages=none)

echo "fetching the source of Qt Core"
apt-get "${apt[@]}" update
(cd "$work" && apt-get "${apt[@]}" source --only-source qtbase-opensource-src)
source=$(find "$work" -maxdepth 1 -type d -name 'qtbase-opensource-src-*' | head -n 1)

# connect() and the emission of the same signal may meet on two threads, as Qt documents. Qt 5 hands its lists of
# connections over without saying so to the compiler, the processor or the sanitizer (relaxed loads and stores), and
# numbers a connection after it has handed it over: each such meeting would be a race of Qt's own. This Qt says so,
# and numbers them before.
order_connections() {
    local object=$source/src/corelib/kernel/qobject
    local lists='connections|signalVector|first|last|nextConnectionList|receiver|receiverThreadData|argumentTypes'
    local number='    c->id = \+\+cd->currentConnectionId;'
    sed -E -i "s/\b($lists)\.loadRelaxed\(/\1.loadAcquire(/g; s/\b($lists)\.storeRelaxed\(/\1.storeRelease(/g" \
        "${object}.cpp" "${object}_p.h"
    sed -E -i "/^$number\$/d; s/^    ConnectionList &connectionList = cd->connectionsForSignal\(signal\);\$/&\n${number//\\/}/" \
        "${object}.cpp"
    [ "$(grep -Ec "^$number\$" "${object}.cpp")" -eq 1 ] && grep -q 'nextConnectionList.storeRelease(c);' "${object}.cpp"
}
order_connections || { echo "the source of Qt has no connections of the kind that this script knows" >&2; exit 1; }

# Lines are all that the reports show of the debug information.
sed -i 's/^\(QMAKE_CFLAGS_RELEASE_WITH_DEBUGINFO .*\) -g$/\1 -gline-tables-only/' "$source/mkspecs/common/gcc-base.conf"

echo "building Qt Core with the thread sanitizer: some minutes"
mkdir "$work/build"
cd "$work/build"
features=(icu glib openssl dbus gui widgets sql-sqlite)
MAKEFLAGS=-j$jobs "$source/configure" -opensource -confirm-license -prefix "$folder" -release -force-debug-info \
    -sanitize thread "${features[@]/#/-no-}" -no-feature-network -no-feature-sql -no-feature-xml \
    -nomake examples -nomake tests -nomake tools -no-pch -no-reduce-relocations \
    -platform linux-clang QMAKE_CXX=clang++-14 QMAKE_CC=clang-14 QMAKE_LINK=clang++-14 \
    >"$work/configure.log" 2>&1 || { tail -n 40 "$work/configure.log"; exit 1; }
make -j "$jobs" >"$work/make.log" 2>&1 || { tail -n 40 "$work/make.log"; exit 1; }
make install >>"$work/make.log" 2>&1 || { tail -n 40 "$work/make.log"; exit 1; }
cd "$folder"
rm -rf -- "$work"
touch "$folder/complete"
