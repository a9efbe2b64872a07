#!/usr/bin/env bash
# Changes the protocol, the send queue and the decoders in many small ways, one at a time, runs the tests against
# each change, and fails when they notice less than 90 % of them.
#
# usage: run.sh [--count N|all] [--seed S] [--only PART] [--list]
#   --count N    how many changes, evenly over the files (240)
#   --seed S     which ones (1)
#   --only PART  those of the files whose names hold PART; may be given again
#   --list       print all there are and run none
#
# For CI: --count 40.
set -euo pipefail

# need FILE PACKAGE
need() {
    [ -e "$1" ] || { echo "mutation: $1 is missing: package $2" >&2 && exit 1; }
}
need /usr/bin/python3 python3
need /usr/lib/python3/dist-packages/clang/cindex.py python3-clang-14
need /usr/lib/llvm-14/lib/libclang-14.so.1 libclang1-14
need /usr/bin/ccache ccache

# The system's own, which has the package; another may stand first in PATH.
exec /usr/bin/python3 "$(dirname -- "${BASH_SOURCE[0]}")/mutate.py" "$@"
