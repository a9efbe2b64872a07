#!/usr/bin/env bash
# Compares the binary interface of libcanbusservice.so.1 with the committed one: packaging/abi/check.sh --help
set -euo pipefail
export LC_ALL=C

here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
root=$(cd -- "$here/../.." && pwd)
build='' library='' headers='' baseline=$here update=
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

print_help() {
    cat <<'HELP'
packaging/abi/check.sh [OPTION...]: compares the library's binary interface with the committed baseline.

  --update         write the baseline instead: packaging/abi/functions.txt and types.xml
  --build DIR      take library and headers of this build as it is; without it build/dev, brought up to date
  --library FILE   another library, with debug information
  --headers DIR    other headers, as they are installed: flat, with the host's in the folder hostsdk
  --baseline DIR   the folder of another baseline

Status 0: the interface is the committed one; 1: it is not, or could not be read; 2: wrong arguments.
HELP
}

say() { printf 'abi: %s\n' "$*"; }

# fail STATUS MESSAGE
fail() {
    printf 'abi: %s\n' "$2" >&2
    exit "$1"
}

read_arguments() {
    while [ $# -gt 0 ]; do
        case $1 in
            --help | -h) print_help && exit 0 ;;
            --update) update=yes ;;
            --build | --library | --headers | --baseline)
                [ $# -ge 2 ] || fail 2 "$1 wants a path: check.sh --help"
                [ -e "$2" ] || fail 2 "$1: there is no $2"
                printf -v "${1#--}" %s "$2"
                shift
                ;;
            *) fail 2 "\"$1\" is no option: check.sh --help" ;;
        esac
        shift
    done
}

require_programs() {
    local program
    for program in abidiff abidw c++ c++filt pkg-config python3 readelf; do
        command -v "$program" >/dev/null ||
            fail 1 "$program is missing: it is in the packages abigail-tools, g++, binutils, pkg-config and python3"
    done
}

build_the_library() {
    say "building the library of build/dev"
    (cd "$root" && { [ -f build/dev/build.ninja ] || cmake --preset dev --log-level=WARNING; } &&
        cmake --build build/dev --target canbusservice) >"$work/build.log" 2>&1 ||
        { cat "$work/build.log" >&2 && fail 1 "build/dev could not be built"; }
    build=$root/build/dev
}

find_library_and_headers() {
    if [ -z "$build" ] && { [ -z "$library" ] || [ -z "$headers" ]; }; then
        build_the_library
    fi
    : "${library:=$build/lib/libcanbusservice.so.1}"
    [ -f "$library" ] || fail 1 "there is no $library"
    [[ $(readelf -S "$library") == *.debug_info* ]] ||
        fail 1 "$library has no debug information: take a build of preset dev"
    [ -n "$headers" ] || install_headers
    headers=$(cd -P -- "$headers" && pwd)
}

install_headers() {
    cmake --install "$build" --component Development --prefix "$work/installed" >/dev/null ||
        fail 1 "the headers of $build could not be installed"
    headers=$work/installed/include/canbusservice
}

# --- functions: what the library exports, with the types that its symbols do not tell ---

# write_functions FILE: all as abidiff tells what an empty library lacks.
write_functions() {
    local status=0
    printf "<abi-corpus version='2.1'/>\n" >"$work/nothing.xml"
    abidiff --no-show-locs "$library" "$work/nothing.xml" >"$work/removed" 2>&1 || status=$?
    (((status & 3) == 0)) || { cat "$work/removed" >&2 && fail 1 "abidiff cannot read $library"; }
    {
        readelf -d "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\]/SONAME \1/p'
        sed -n -e "s/^  \[D\] '\(function \|method \)\?\(.*\)'    {.*/\2/p" -e 's/^  \[D\] \(_Z\)/\1/p' \
            "$work/removed" | c++filt | grep 'canbus::\|DSPLState' | awk '!seen[$0]++'
    } >"$1"
}

check_functions() {
    local gone new
    write_functions "$work/functions.txt"
    gone=$(comm -23 <(sort "$baseline/functions.txt") <(sort "$work/functions.txt"))
    new=$(comm -13 <(sort "$baseline/functions.txt") <(sort "$work/functions.txt"))
    if [ -n "$gone" ]; then
        say "in the baseline, and not in the library:"
        printf '    %s\n' "${gone//$'\n'/$'\n'    }"
        say "a program that was linked before does not start without them, or takes another result than it gets"
        is_broken=yes
    fi
    if [ -n "$new" ]; then
        say "in the library, and not in the baseline:"
        printf '    %s\n' "${new//$'\n'/$'\n'    }"
        has_more=yes
    fi
}

# --- types: sizes, members, virtual operations and enumerators ---

# compile SOURCE PROGRAM OPTION...: with the headers in a folder of one name, since paths stand in the debug information.
compile() {
    local source=$1 program=$2 flags
    shift 2
    read -ra flags <<<"$(pkg-config --cflags Qt5Core)"
    (cd "$work" && c++ -std=c++17 -g -O0 -fPIC -shared "-fdebug-prefix-map=$headers=/headers" "$@" "${flags[@]}" \
        -I"$headers" -I"$headers/hostsdk" "$source" -o "$program") || fail 1 "the installed headers do not compile"
}

# require_all_types FILE: each type that an installed header declares is described there.
require_all_types() {
    local header missing
    for header in "$headers"/*.h; do
        printf '#include <%s>\n' "${header##*/}"
    done >"$work/headers.cpp"
    compile headers.cpp headers.so -fno-eliminate-unused-debug-types
    missing=$("$here/undescribed.py" "$work/headers.so" /headers "$1") || fail 1 "the headers' types could not be read"
    [ -z "$missing" ] ||
        fail 1 "packaging/abi/interface.cpp does not use ${missing//$'\n'/, }, which the installed headers declare: add it there"
}

# write_types FILE: from one file's debug information, since abidw drops part of a class that several files tell.
write_types() {
    cp "$here/interface.cpp" "$work"
    compile interface.cpp interface.so -femit-class-debug-always
    abidw --suppr "$here/types.abignore" --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed \
        --no-parameter-names --type-id-style hash "$work/interface.so" >"$1" || fail 1 "abidw has failed"
    require_all_types "$1"
}

check_types() {
    local status=0
    write_types "$work/types.xml"
    abidiff --harmless --no-show-locs "$baseline/types.xml" "$work/types.xml" >"$work/report" 2>&1 || status=$?
    [ $status -ne 0 ] || return 0
    cat "$work/report"
    # Bits of the status: 1 and 2 for a failure of its own, 4 for a change, 8 for one that surely breaks.
    (((status & 3) == 0)) || fail 1 "abidiff has failed"
    say "types have changed: a program that was compiled before takes them for what they were"
    if (((status & 8) != 0)) || grep -q vtable "$work/report"; then
        say "virtual operations stand in other places: a program that calls one, or has its own, gets another"
    fi
    is_broken=yes
}

tell() {
    if [ -n "$is_broken" ]; then
        say "THE INTERFACE IS BROKEN. Undo it, and add something new beside the old; docs/decisions.md says what may change."
        say "Where nothing has been released with it yet: packaging/abi/check.sh --update, and say so in the commit."
        return 1
    elif [ -n "$has_more" ]; then
        say "The interface has grown, which does no harm. Write it down, in the same commit: packaging/abi/check.sh --update"
        return 1
    fi
    say "the interface is the committed one: $(wc -l <"$work/functions.txt") symbols"
}

read_arguments "$@"
require_programs
find_library_and_headers
if [ -n "$update" ]; then
    write_types "$work/types.xml"
    write_functions "$baseline/functions.txt"
    cp "$work/types.xml" "$baseline"
    say "written: $baseline/functions.txt, $baseline/types.xml"
    exit 0
fi
is_broken='' has_more=''
check_functions
check_types
tell
