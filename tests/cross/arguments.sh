#!/usr/bin/env bash
# What the scripts of the cross build say to wrong arguments: one line on standard error and status 2, before anything
# is built or made; and that no folder is replaced which they did not make.
#
# arguments.sh SOURCE_DIR BUILD_DIR: in BUILD_DIR/cross-arguments-check, which it replaces.
set -euo pipefail

cross=$1/packaging/cross/cross.sh make_root=$1/packaging/cross/sysroot.sh work=$2/cross-arguments-check
rm -rf "$work"
mkdir -p "$work/cache"
export XDG_CACHE_HOME=$work/cache

fail() {
    printf 'arguments: %s\n' "$*" >&2
    exit 1
}

# expect STATUS TEXT COMMAND...
expect() {
    local wanted=$1 text=$2 status=0
    shift 2
    "$@" >"$work/output" 2>"$work/errors" </dev/null || status=$?
    [ "$status" -eq "$wanted" ] || fail "$* ends with status $status, not $wanted: $(cat "$work/errors")"
    grep -qF -- "$text" "$work/errors" || fail "$* does not say \"$text\" but: $(cat "$work/errors")"
    [ "$(wc -l <"$work/errors")" -eq 1 ] || fail "$* takes more than a line: $(cat "$work/errors")"
}

expect 2 "name an architecture" "$cross"
expect 2 "one architecture at a time" "$cross" armhf arm64
expect 2 "\"riscv64\" is neither" "$cross" riscv64
expect 2 "--tests takes a value" "$cross" armhf --tests
expect 2 "--jobs takes a number" "$cross" armhf --jobs many
expect 2 "exclude each other" "$cross" armhf --no-tests --tests link
expect 2 "--short has tests of its own" "$cross" armhf --short --no-tests
expect 2 "there is no $work/nowhere" "$cross" armhf --sysroot "$work/nowhere"
mkdir "$work/bare"
expect 2 "no var/lib/dpkg/status" "$cross" armhf --sysroot "$work/bare"
expect 2 "it takes armhf or arm64" "$make_root" riscv64
expect 2 "one too many" "$make_root" armhf one two
expect 1 "was not made" "$make_root" --made armhf
mkdir -p "$work/other/var/lib"
printf 'armhf %s\n' "$(sha256sum <"$make_root")" >"$work/other/var/lib/canbusservice-sysroot"
[ "$("$make_root" --made armhf "$work/other")" = "$work/other" ] || fail "a root that was made is not known again"
expect 1 "was not made" "$make_root" --made arm64 "$work/other"
mkdir "$work/mine"
echo kept >"$work/mine/file"
expect 1 "no root of this script's" "$make_root" armhf "$work/mine"
[ "$(cat "$work/mine/file")" = kept ] || fail "a folder of somebody's own was changed"
for script in "$cross" "$make_root"; do
    "$script" --help | grep -q -- 'armhf|arm64' || fail "$script has no help"
done
[ -z "$(ls -A "$work/cache")" ] || fail "something was made: $(ls -A "$work/cache")"
