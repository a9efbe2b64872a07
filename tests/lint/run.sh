#!/usr/bin/env bash
# Checks the layout, C++ and Qt habits of the sources, the scripts and the manual pages. Wants build/dev, for the
# commands that compile each file and the sources that moc makes.
#
# usage: run.sh
set -euo pipefail

[ $# -eq 0 ] || { echo "usage: $0" >&2; exit 2; }
root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)
jobs=$(nproc)
cd "$root"

say() { printf 'lint: %s\n' "$*"; }

tracked() { git -c safe.directory="$root" ls-files -z -- "$@"; }

lint_layout() {
    say "clang-format"
    tracked '*.cpp' '*.h' | xargs -0r clang-format-14 --dry-run -Werror
}

# each_source COMMAND...: runs it on each source of what is delivered; fails when it fails or prints anything.
each_source() {
    local findings status=0
    findings=$(tracked 'src/*.cpp' 'hostsdk/*.cpp' 'boxsim/*.cpp' 'recording/*.cpp' 'commandline/*.cpp' 'tools/*.cpp' \
        'qml/*.cpp' 'demo/*.cpp' \
        | xargs -0r -n 1 -P "$jobs" "$@" 2>&1 | sed -E '/^[0-9]+ (warning|error)s?.* generated\.$/d') || status=1
    [ -z "$findings" ] || printf '%s\n' "$findings"
    [ -z "$findings" ] && [ $status -eq 0 ]
}

lint_tidy() {
    say "clang-tidy"
    each_source clang-tidy-14 -p build/dev --quiet
}

lint_clazy() {
    say "clazy"
    # Connections by the signature's text are on purpose where the other side is known by its text alone.
    each_source clazy-standalone -p build/dev --checks=level0,level1,no-old-style-connect
}

# What cppcheck is not asked about, each with its reason.
cppcheck_off=(
    passedByValue # what Qt shares implicitly goes through the interface by value
    constParameter # slots and overrides have the signature that they are given
    noExplicitConstructor # what stands for a value may be made of one
    shadowFunction # a local variable and an accessor of one name are no mistake; -Wshadow has the rest
    useStlAlgorithm # a loop that reads better stays one
    redundantContinue # says that a branch ends there on purpose
    unusedStructMember # rows of tables have columns that only one reader takes
)

lint_cppcheck() {
    say "cppcheck"
    cppcheck --quiet --std=c++17 --library=qt --inline-suppr --error-exitcode=1 -j "$jobs" \
        --enable=warning,performance,portability,style "${cppcheck_off[@]/#/--suppress=}" -D__linux__ \
        -I . -I src -I src/support -I src/link -I src/serial -I src/player -I src/groups \
        -I hostsdk/include -I hostsdk/reference src hostsdk boxsim recording commandline tools qml demo
}

lint_scripts() {
    say "shellcheck"
    tracked dev .ci/run '*.sh' 'packaging/completions/bash/*' packaging/debian/cross/dpkg-query | xargs -0r shellcheck
}

# groff names a mistake in a page as a warning, and formats it all the same.
lint_manual_pages() {
    say "manual pages"
    local page warnings status=0
    while IFS= read -r -d '' page; do
        warnings=$(LC_ALL=C.UTF-8 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null) || status=1
        if [ -n "$warnings" ]; then
            printf '%s: %s\n' "$page" "$warnings"
            status=1
        fi
    done < <(tracked 'docs/man/*.1')
    return $status
}

failed=()
for check in lint_layout lint_scripts lint_manual_pages lint_cppcheck lint_tidy lint_clazy; do
    $check || failed+=("${check#lint_}")
done
if [ ${#failed[@]} -gt 0 ]; then
    printf 'lint: findings of %s: see above\n' "${failed[*]}" >&2
    exit 1
fi
say "no findings"
