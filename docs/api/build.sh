#!/usr/bin/env bash
# Makes the reference of the C++ interface: docs/api/build.sh --help
set -euo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)

print_help() {
    cat <<'HELP'
docs/api/build.sh [FOLDER]: makes the reference of all that is installed, FOLDER/html/index.html (build/docs/api).

A warning of Doxygen's is a failure, and so is an operation that names no thread, or does not say what its
arguments and its result are.

Status 0: it is made and complete; 1: it is not; 2: wrong arguments.
HELP
}

# fail STATUS MESSAGE
fail() {
    printf 'reference: %s\n' "$2" >&2
    exit "$1"
}

case ${1:-} in
    --help | -h) print_help && exit 0 ;;
    -*) fail 2 "\"$1\" is no option: build.sh --help" ;;
esac
[ $# -le 1 ] || fail 2 "takes one folder, and \"$2\" is one too many: build.sh --help"
for program in doxygen python3; do
    command -v "$program" >/dev/null || fail 1 "$program is missing: it is in the package of that name"
done

folder=${1:-$root/build/docs/api}
mkdir -p "$folder"
folder=$(cd -- "$folder" && pwd)
rm -rf "$folder/html" "$folder/xml"
version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' "$root/CMakeLists.txt")

cd "$root"
{
    cat docs/api/Doxyfile
    printf 'OUTPUT_DIRECTORY = "%s"\nPROJECT_NUMBER = %s\n' "$folder" "$version"
} | doxygen - || fail 1 "Doxygen has warned"
python3 -B docs/api/check.py "$root" "$folder/xml" || fail 1 "the comments have gaps"
printf 'reference: %s\n' "$folder/html/index.html"
