#!/usr/bin/env bash
# Configures the project with the SDK of a head unit, made here of the reference host's headers, and compiles the
# check of that SDK: as it is, in another right shape, and with something missing or wrong.
#
# external_host_sdk.sh CMAKE SOURCE_DIR BUILD_DIR CXX: in BUILD_DIR/host-sdk-check, which it replaces.
set -euo pipefail

cmake=$1 source=$2 build=$3 cxx=$4
work=$build/host-sdk-check
sdk=$work/sdk
log=$work/last.log
limit_s=50

fail() {
    printf 'external_host_sdk: %s\n' "$*" >&2
    exit 1
}

# logged COMMAND...: its status, and its output in the log; a command that hangs is a failure of the test.
logged() {
    local status=0
    timeout "$limit_s" "$@" >"$log" 2>&1 || status=$?
    [ "$status" -ne 124 ] || fail "not done in $limit_s s: $*"$'\n'"$(cat "$log")"
    return "$status"
}

take_headers() {
    rm -rf "$sdk/include"
    cp -r "$source/hostsdk/include" "$sdk/include"
}

make_package() {
    rm -rf "$work"
    mkdir -p "$sdk/lib/cmake/HostSdk"
    take_headers
    cat >"$sdk/lib/cmake/HostSdk/HostSdkConfig.cmake" <<'END'
add_library(HostSdk::hostsdk INTERFACE IMPORTED)
set_target_properties(HostSdk::hostsdk PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES "${CMAKE_CURRENT_LIST_DIR}/../../../include")
END
}

configure() {
    local launcher=()
    ! command -v ccache >/dev/null || launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    logged "$cmake" -S "$source" -B "$work/build" -G Ninja \
        -DCANBUS_HOST_SDK=external -DCMAKE_PREFIX_PATH="$sdk" -DCMAKE_CXX_COMPILER="$cxx" "${launcher[@]}" \
        -DCANBUS_BUILD_TOOLS=OFF -DCANBUS_BUILD_TESTS=OFF -DCANBUS_LINK_WIDGETS=OFF \
        || fail "expected: the project configures with the package HostSdk; it said:"$'\n'"$(cat "$log")"
}

# Compiled anew each time: what was compiled for the headers before is no answer.
build_check() { logged "$cmake" --build "$work/build" --clean-first --target hostsdk_check; }

# change SED_SCRIPT: in fresh copies of the headers
change() {
    take_headers
    sed -i "$1" "$sdk"/include/*.h
    ! diff -r "$source/hostsdk/include" "$sdk/include" >/dev/null || fail "\"$1\" changes none of the headers"
}

# expect_taken WHAT: the headers as they are now pass the check.
expect_taken() {
    build_check || fail "expected: an SDK $1 passes hostsdk_check; it said:"$'\n'"$(cat "$log")"
}

# expect_refused WHAT MESSAGE: the check fails on the headers as they are now, and says why.
expect_refused() {
    ! build_check || fail "expected: an SDK $1 fails hostsdk_check; it passed"
    grep -qF "$2" "$log" \
        || fail "expected: an SDK $1 fails hostsdk_check with \"$2\"; it said:"$'\n'"$(cat "$log")"
}

make_package
configure
expect_taken "with all that the reference host declares"

change 's/^enum Touch : int /enum Touch /'
expect_taken "whose Qx::Touch leaves its underlying type open"

change '/void onEvent(int event);/d'
expect_refused "without EventHandler::onEvent" "the host SDK lacks: void EventHandler::onEvent(int)"

change 's/^enum DSPLState : int /enum class DSPLState : int /; s/C::DSPL_Home/C::DSPLState::DSPL_Home/'
expect_refused "whose C::DSPLState is an enum class" "C::DSPLState must convert to int"
