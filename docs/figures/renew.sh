#!/usr/bin/env bash
# Renews the figures in README.md from what the last runs of the proofs have left behind.
set -euo pipefail

usage() {
    cat <<'USAGE'
docs/figures/renew.sh           takes the results in build/results into docs/figures/figures.json, and writes these
                                figures into README.md
docs/figures/renew.sh --check   fails unless README.md has exactly the figures of figures.json; changes nothing

A proof that has not been run keeps its figures, and so does one whose last run was a smaller one than theirs and has
found nothing.
Status 0: done. 1: something is wrong. 2: wrong arguments.
USAGE
}

here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
case $#${1:+ $1} in
    0 | "1 --check") exec python3 -B "$here/figures.py" "$@" ;;
    "1 --help" | "1 -h") usage ;;
    *)
        printf 'figures: --check or nothing, and "%s" was given: docs/figures/renew.sh --help\n' "$*" >&2
        exit 2
        ;;
esac
