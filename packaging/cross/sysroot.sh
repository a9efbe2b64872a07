#!/usr/bin/env bash
# Makes the root of a Debian 12 machine with what the project is built against there: headers, libraries, Qt 5.15,
# and the package database that dependencies of packages are found in. Nothing of it runs on this machine but the
# tests, in an emulator.
#
# usage: sysroot.sh [--made] armhf|arm64 [FOLDER]
#   --made  make nothing: status 1 where there is no such root, or one that was made otherwise
#   FOLDER  where it is made: ~/.cache/canbusservice/sysroot-ARCH unless told otherwise. A root that this script made
#           there as it is now is left alone, another one is replaced
#
# Prints the folder as its last line. CANBUS_DEBIAN_MIRROR names another mirror than http://deb.debian.org/debian.
set -euo pipefail

# fail STATUS MESSAGE
fail() {
    printf 'sysroot.sh: %s\n' "$2" >&2
    exit "$1"
}

say() { printf 'sysroot: %s\n' "$*" >&2; }

packages=(
    libc6-dev libstdc++-12-dev linux-libc-dev
    qtbase5-dev libqt5serialport5-dev rapidjson-dev
    qtdeclarative5-dev # the QML module and the head unit, and what their tests load
    qml-module-qtquick2 qml-module-qtquick-window2 qml-module-qtquick-shapes qml-module-qttest
    fonts-inter
)

is_to_be_made=true
if [ "${1:-}" = --made ]; then
    is_to_be_made=false
    shift
fi
architecture=${1:-}
case $architecture in
    armhf | arm64) ;;
    --help | -h)
        sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}"
        exit 0
        ;;
    *) fail 2 "it takes armhf or arm64, not \"$architecture\": --help tells more" ;;
esac
[ $# -le 2 ] || fail 2 "it takes an architecture and a folder, and \"$3\" is one too many"
folder=${2:-${XDG_CACHE_HOME:-$HOME/.cache}/canbusservice/sysroot-$architecture}
mirror=${CANBUS_DEBIAN_MIRROR:-http://deb.debian.org/debian}
folder=$(realpath -m "$folder")
recipe="$architecture $(sha256sum <"${BASH_SOURCE[0]}")"
made_by=$folder/var/lib/canbusservice-sysroot # the recipe of what lies there, in a root of this script's
is_made() { [ -e "$made_by" ] && [ "$(cat "$made_by")" = "$recipe" ]; }

# Two that make one root at once would make it twice.
if $is_to_be_made; then
    mkdir -p "$(dirname "$folder")"
    exec {lock}>"$folder.lock"
    flock "$lock"
fi
if is_made; then
    printf '%s\n' "$folder"
    exit 0
fi
$is_to_be_made || fail 1 "$folder was not made, or made otherwise"
if [ -e "$folder" ] && [ ! -e "$made_by" ] && [ -n "$(ls -A "$folder")" ]; then
    fail 1 "$folder holds something, and no root of this script's: name another folder, or remove it"
fi
for program in mmdebstrap dpkg-deb; do
    command -v "$program" >/dev/null || fail 1 "$program is missing: it is in the package ${program/dpkg-deb/dpkg}"
done
if [ "$(id -u)" -ne 0 ] && ! command -v newuidmap >/dev/null && ! command -v fakechroot >/dev/null; then
    fail 1 "newuidmap is missing: mmdebstrap takes the package uidmap where you are not root"
fi

new=$(mktemp -d "$folder.XXXXXX")
chmod 755 "$new"
archives=$new/var/cache/apt/archives
trap 'rm -rf "$new"' EXIT
trap 'exit 130' INT TERM HUP

# Of Debian's suites the main one alone: the others' indexes are renewed at other times for other architectures.
# Taken as a tar file, so that all of it belongs to whoever calls this.
unpack_packages() {
    local list
    list=$(IFS=, && echo "${packages[*]}")
    mmdebstrap --quiet --variant=extract --architectures="$architecture" --components=main --include="$list" \
        --skip=cleanup/apt/cache --format=tar bookworm - "deb $mirror bookworm main" \
        | tar -x -C "$new" --no-same-owner --exclude=./dev
}

# Absolute links would lead into the root of this machine.
make_links_relative() {
    local link
    while IFS= read -r -d '' link; do
        ln -snf "$(realpath -ms --relative-to="$(dirname "$link")" "$new$(readlink "$link")")" "$link"
    done < <(find "$new" -type l -lname '/*' -print0)
}

# note_package DEB: as dpkg has it of a package that is installed. What each of its files belongs to, which names its
# libraries have since when, and who it is.
note_package() {
    local info=$new/var/lib/dpkg/info control=$new/var/lib/dpkg/control name kind
    rm -rf "$control"
    dpkg-deb -e "$1" "$control"
    name=$(dpkg-deb -f "$1" Package)
    [ "$(dpkg-deb -f "$1" Multi-Arch)" != same ] || name+=:$architecture
    dpkg-deb --fsys-tarfile "$1" | tar -t | sed -e 's,^\.,,' -e 's,/$,,' -e 's,^$,/.,' >"$info/$name.list"
    for kind in symbols shlibs; do
        [ ! -e "$control/$kind" ] || cp "$control/$kind" "$info/$name.$kind"
    done
    { sed '/^$/d; /^Package:/a Status: install ok installed' "$control/control" && echo; } >>"$new/var/lib/dpkg/status"
    rm -rf "$control"
}

note_packages() {
    local deb
    rm -rf "$new/var/lib/dpkg"
    mkdir -p "$new/var/lib/dpkg/info" "$new/var/lib/dpkg/updates"
    echo 1 >"$new/var/lib/dpkg/info/format"
    : >"$new/var/lib/dpkg/available"
    : >"$new/var/lib/dpkg/status"
    for deb in "$archives"/*.deb; do
        note_package "$deb"
    done
    rm -rf "${archives%/archives}"
}

say "making the root of a Debian 12 $architecture in $folder"
unpack_packages
make_links_relative
say "noting which packages are in it"
note_packages
printf '%s\n' "$recipe" >"$new/var/lib/canbusservice-sysroot"
rm -rf "$folder"
mv -T "$new" "$folder"
printf '%s\n' "$folder"
