#!/usr/bin/env bash
# Installs the packages in a fresh root of Debian 12, uses all of them there, and removes them again.
#
# install_in_root.sh FOLDER: the folder with the packages, and no others. What happens in the root is in use_in_root.sh.
# Takes root, for the mounts of the root and the packages in it; mmdebstrap; and the network, for what the packages
# depend on. The bare root and the packages that were fetched are kept in ~/.cache/canbusservice.
set -euo pipefail

here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
cache=${XDG_CACHE_HOME:-$HOME/.cache}/canbusservice
arch=$(dpkg --print-architecture)
bare=$cache/debian-12-$arch.tar
archives=$cache/archives-$arch

say() { printf 'install_in_root: %s\n' "$*"; }

# fail STATUS MESSAGE
fail() {
    printf 'install_in_root: %s\n' "$2" >&2
    exit "$1"
}

# What is in the root and what is mounted there goes with the namespace in which the second call runs.
enter_namespace() {
    if [ $# -ne 1 ] || [ ! -d "$1" ]; then
        fail 2 "install_in_root.sh takes the folder with the packages, not \"$*\""
    fi
    compgen -G "$1/*_$arch.deb" >/dev/null || fail 2 "$1 holds no packages for $arch: packaging/package.sh makes them"
    [ "$(id -u)" -eq 0 ] || fail 1 "this takes root, for mounts and packages in a root of its own: sudo $0 $1"
    local command
    for command in mmdebstrap dpkg-scanpackages; do
        command -v $command >/dev/null || fail 1 "$command is missing: ./dev package installs what this takes"
    done
    CANBUS_ROOT=$(mktemp -d)
    export CANBUS_ROOT
    trap 'rm -rf --one-file-system "$CANBUS_ROOT"' EXIT
    unshare --mount --pid --fork --kill-child true 2>/dev/null \
        || fail 1 "mounts are not allowed here: in a container, this takes the capability SYS_ADMIN"
    unshare --mount --pid --fork --kill-child "${BASH_SOURCE[0]}" "$(realpath -- "$1")"
}

make_bare_root() {
    mkdir -p "$cache" "$archives/partial"
    [ ! -s "$bare" ] || return 0
    say "making a bare root: $bare"
    mmdebstrap --quiet --format=tar --variant=minbase --architectures="$arch" bookworm "$bare.new" \
        || fail 1 "mmdebstrap has failed"
    mv "$bare.new" "$bare"
}

fill_root() {
    tar -C "$CANBUS_ROOT" -xf "$bare"
    cp --remove-destination /etc/resolv.conf "$CANBUS_ROOT/etc/resolv.conf"
    # A service that a package brings is not started in the root.
    printf '#!/bin/sh\nexit 101\n' >"$CANBUS_ROOT/usr/sbin/policy-rc.d"
    chmod +x "$CANBUS_ROOT/usr/sbin/policy-rc.d"
    # The root is gone in a few minutes: nothing has to outlive a loss of power.
    echo force-unsafe-io >"$CANBUS_ROOT/etc/dpkg/dpkg.cfg.d/no-sync"
    mount -t proc proc "$CANBUS_ROOT/proc"
    mkdir -p "$CANBUS_ROOT/dev/pts" "$CANBUS_ROOT/packages" "$CANBUS_ROOT/check"
    mount -t devpts -o newinstance,ptmxmode=0666,mode=0620,gid=5 devpts "$CANBUS_ROOT/dev/pts"
    [ -e "$CANBUS_ROOT/dev/ptmx" ] || ln -s pts/ptmx "$CANBUS_ROOT/dev/ptmx"
    mount --bind "$archives" "$CANBUS_ROOT/var/cache/apt/archives"
    cp "$here/use_in_root.sh" "$CANBUS_ROOT/check/"
    cp "$1"/*.deb "$CANBUS_ROOT/packages/"
    (cd "$CANBUS_ROOT/packages" && dpkg-scanpackages . >Packages 2>/dev/null)
    echo 'deb [trusted=yes] file:/packages ./' >"$CANBUS_ROOT/etc/apt/sources.list.d/packages.list"
}

use_root() {
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/check LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} \
        chroot "$CANBUS_ROOT" /bin/bash /check/use_in_root.sh </dev/null
}

if [ -z "${CANBUS_ROOT:-}" ]; then
    enter_namespace "$@"
else
    make_bare_root
    fill_root "$1"
    use_root
fi
