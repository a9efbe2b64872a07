#!/usr/bin/env bash
# A missing program skips a test, or fails it where programs are required; one that is there changes nothing.
set -euo pipefail

with_program=$(dirname -- "${BASH_SOURCE[0]}")/with_program.sh
failed=0

# expect REQUIRED STATUS SHOWN ARGUMENT...: by with_program.sh, with CANBUS_REQUIRE_PROGRAMS set to REQUIRED.
expect() {
    local required=$1 wanted=$2 shown=$3 status=0 output
    shift 3
    output=$(CANBUS_REQUIRE_PROGRAMS=$required "$with_program" "$@" 2>&1) || status=$?
    [[ $status -eq $wanted && $output == *"$shown"* ]] && return
    echo "FAILED: CANBUS_REQUIRE_PROGRAMS='$required' $*: status $status, not $wanted, or no \"$shown\" in: $output"
    failed=1
}

missing=no-such-program-anywhere
expect '' 77 "skipped: $missing is missing, of the package its-package" "$missing" its-package echo ran
expect 1 1 "failed: $missing is missing, of the package its-package" "$missing" its-package echo ran
for required in '' 1; do
    expect "$required" 0 "ran it" sh dash echo ran it
    expect "$required" 5 "" sh dash sh -c 'exit 5'
done
exit $failed
