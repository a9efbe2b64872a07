#!/usr/bin/env bash
# Runs a test that takes a program which not every machine has. Where it is missing the test is skipped (status 77),
# and fails where CANBUS_REQUIRE_PROGRAMS is set.
#
# with_program.sh PROGRAM PACKAGE COMMAND...
set -euo pipefail

program=$1 package=$2
shift 2
command -v "$program" >/dev/null && exec "$@"
if [ -n "${CANBUS_REQUIRE_PROGRAMS:-}" ]; then
    echo "failed: $program is missing, of the package $package, and CANBUS_REQUIRE_PROGRAMS is set" >&2
    exit 1
fi
echo "skipped: $program is missing, of the package $package"
exit 77
