#!/usr/bin/env bash
# Runs the fuzz targets: see "Fuzzing" in docs/testing.md.
set -euo pipefail

usage() {
    cat <<'USAGE'
fuzz/run.sh [SECONDS] [--target NAME]... [--runs N] [--jobs N]: builds the fuzz targets into build/fuzz and
runs them.

  SECONDS        how long all targets run together; 60 by default
  --target NAME  run this target, and those that are named likewise, for all of the time
  --runs N       run each target until its program has had N executions in all, those of earlier runs counted
  --jobs N       run N targets at a time; 1 by default

Targets: stream frames protocol decoders texts sendqueue recording scenario.
Building takes a minute and a half of one core, once. The first finding of a target ends its run, is kept in
build/fuzz/findings, and fails this script. build/fuzz/executions holds what each program has been through; a
program that was built from other code begins at 0.
USAGE
}

# fail STATUS MESSAGE
fail() {
    printf 'fuzz: %s\n' "$2" >&2
    exit "$1"
}

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build/fuzz
all_targets=(stream frames protocol decoders texts sendqueue recording scenario)
targets=()
seconds=60
runs=
jobs=1
# So much is lost at most when the machine goes down.
readonly runs_at_once=1000000

is_number() { [[ $1 =~ ^[1-9][0-9]{0,9}$ ]]; }

read_arguments() {
    while [ $# -gt 0 ]; do
        case $1 in
            --help | -h) usage && exit 0 ;;
            --target)
                [[ " ${all_targets[*]} " == *" ${2:-} "* ]] || fail 2 "there is no target \"${2:-}\": ${all_targets[*]}"
                targets+=("$2")
                shift
                ;;
            --jobs)
                is_number "${2:-}" || fail 2 "--jobs takes a whole number, not \"${2:-}\""
                jobs=$2
                shift
                ;;
            --runs)
                is_number "${2:-}" || fail 2 "--runs takes a whole number, not \"${2:-}\""
                runs=$2
                shift
                ;;
            *)
                is_number "$1" || fail 2 "\"$1\" is no number of seconds: fuzz/run.sh --help"
                seconds=$1
                ;;
        esac
        shift
    done
    [ ${#targets[@]} -gt 0 ] || targets=("${all_targets[@]}")
}

build_targets() {
    printf 'fuzz: building into %s\n' "$build"
    local launcher=()
    command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    cmake -S "$root" -B "$build" -G Ninja --log-level=WARNING -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_CXX_COMPILER="${CLANGXX:-clang++-14}" "${launcher[@]}" -DCANBUS_BUILD_FUZZ=ON \
        -DCANBUS_BUILD_TOOLS=OFF -DCANBUS_BUILD_TESTS=OFF -DCANBUS_LINK_WIDGETS=OFF >/dev/null
    cmake --build "$build" -j "$(nproc)" --target "${targets[@]/#/fuzz_}"
}

# Long enough for what each target reads, and no longer: short inputs are fast ones.
longest_input() {
    case $1 in
        scenario) echo 2048 ;;
        recording) echo 512 ;;
        sendqueue | texts) echo 128 ;;
        protocol) echo 96 ;;
        *) echo 256 ;;
    esac
}

# digest NAME: of the program and of those of its libraries that are built here, without what a debugger and
# the linker add.
digest() {
    local file
    { printf '%s\n' "$build/fuzz/fuzz_$1"; ldd "$build/fuzz/fuzz_$1" | sed -n "s|.* => \($build/[^ ]*\).*|\1|p"; } |
        while read -r file; do
            objcopy --strip-debug --remove-section=.note.gnu.build-id "$file" "$build/executions/$1.bare"
            sha256sum <"$build/executions/$1.bare"
            rm "$build/executions/$1.bare"
        done | sha256sum | cut -d ' ' -f 1
}

# counted NAME: sets `executions` and `findings` to what this very program has been through.
counted() {
    local of
    read -r of executions findings 2>/dev/null <"$build/executions/$1" || of=
    [ "$of" = "$(digest "$1")" ] || { executions=0 && findings=0; }
}

# count NAME LOG
count() {
    local executions findings more found
    counted "$1"
    more=$(sed -n 's/^stat::number_of_executed_units: *//p' "$2")
    found=$(grep -c 'Test unit written to ' "$2" || true)
    printf '%s %s %s\n' "$(digest "$1")" $((executions + ${more:-0})) $((findings + found)) >"$build/executions/$1"
}

# run_target NAME SECONDS
run_target() {
    local executions findings start=$SECONDS
    if [ -z "$runs" ]; then
        run_once "$1" "$start" -max_total_time="$2"
        return
    fi
    counted "$1"
    while [ "$executions" -lt "$runs" ]; do
        local more=$((runs - executions))
        [ $more -le $runs_at_once ] || more=$runs_at_once
        run_once "$1" "$start" -runs=$more || return
        counted "$1"
    done
}

# run_once NAME START LIMIT: what it finds new is kept in build/fuzz/corpus, where the next run begins.
run_once() {
    local target=$1 log=$build/$1.log status=0
    local dictionary=() seeds=("$root/fuzz/corpus/$target")
    [ ! -f "$root/fuzz/$target.dict" ] || dictionary=(-dict="$root/fuzz/$target.dict")
    [ ! -d "$root/fuzz/regressions/$target" ] || seeds+=("$root/fuzz/regressions/$target")
    [ "$target" != scenario ] || seeds+=("$root/scenarios" "$root/scenarios/faults")
    mkdir -p "$build/corpus/$target" "$build/findings"
    # Little is kept of freed memory and of who has allocated it: what is found is run again by hand, with all.
    # Leaks are looked for where the inputs are replayed: here, what is kept for the next input looks like one.
    ASAN_OPTIONS="quarantine_size_mb=1:thread_local_quarantine_size_kb=64:malloc_context_size=1:${ASAN_OPTIONS:-}" \
        UBSAN_OPTIONS="print_stacktrace=1:${UBSAN_OPTIONS:-}" \
        "$build/fuzz/fuzz_$target" "$3" "${dictionary[@]}" -max_len="$(longest_input "$target")" \
        -timeout=30 -rss_limit_mb=2048 -detect_leaks=0 -reload=0 -print_final_stats=1 \
        -artifact_prefix="$build/findings/$target-" "$build/corpus/$target" "${seeds[@]}" >"$log" 2>&1 &
    fuzzer=$!
    # It ends by itself then, and says how far it has come.
    trap 'runs=0 && kill "$fuzzer" 2>/dev/null' INT TERM
    wait "$fuzzer" || status=$?
    while kill -0 "$fuzzer" 2>/dev/null; do
        wait "$fuzzer" || status=$?
    done
    [ $status -eq 0 ] || ! stood_still "$target" "$log" || status=0
    count "$target" "$log"
    if [ $status -eq 0 ]; then
        report "$target" "$log" $((SECONDS - $2))
        return
    fi
    report_end "$target" "$log"
    return 1
}

# stood_still NAME LOG: whether the run has ended by a timeout that its input does not have when it is run again:
# then it was the machine that took the time, or somebody has stopped the process for a while.
stood_still() {
    local finding
    finding=$(sed -n 's/.*Test unit written to \(.*-timeout-.*\)/\1/p' "$2")
    [ -n "$finding" ] && "$build/fuzz/fuzz_$1" -timeout=30 "$finding" >/dev/null 2>&1 || return
    rm "$finding"
    sed -i 's/Test unit written to /Nothing is wrong with /' "$2"
}

# report NAME LOG SECONDS
report() {
    local executions findings coverage
    counted "$1"
    coverage=$(sed -n 's/^#[0-9]*.*DONE *cov: \([0-9]*\) ft: \([0-9]*\).*/\1 edges, \2 features/p' "$2")
    printf 'fuzz: %-10s %10s executions in all after %s s, coverage %s, no finding\n' "$1" "$executions" "$3" "$coverage"
}

# report_end NAME LOG: of a run that ended before its time.
report_end() {
    local finding
    if grep -q 'libFuzzer: run interrupted' "$2"; then
        printf 'fuzz: %-10s interrupted by a signal, no finding until then\n' "$1"
        return
    fi
    finding=$(sed -n 's/.*Test unit written to //p' "$2" | tail -n 1)
    grep -E '^fuzz: |ERROR: |runtime error: |SUMMARY: ' "$2" || tail -n 5 "$2"
    printf 'fuzz: %-10s FINDING %s\n' "$1" "${finding:-without an input: see $2}"
    [ -z "$finding" ] || cat <<HOW
fuzz: run it again:  $build/fuzz/fuzz_$1 $finding
fuzz: make it small: $build/fuzz/fuzz_$1 -minimize_crash=1 -runs=100000 $finding
fuzz: make it a test: copy it to fuzz/regressions/$1/ under a name that says what it shows
HOW
}

# run_all SECONDS
run_all() {
    local target
    mkdir -p "$build/executions"
    trap 'kill $(jobs -rp) 2>/dev/null; wait; exit 130' INT TERM
    for target in "${targets[@]}"; do
        while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do wait -n || true; done
        { run_target "$target" "$1" || : >"$ended_early/$target"; } &
    done
    wait
}

# table: what all programs have been through, and which of them failed.
table() {
    local target executions findings
    printf 'fuzz: %-10s %12s %9s\n' target executions findings
    for target in "${targets[@]}"; do
        counted "$target"
        printf 'fuzz: %-10s %12s %9s\n' "$target" "$executions" "$findings"
        [ ! -e "$ended_early/$target" ] && [ "$findings" -eq 0 ] || failed+=("$target")
    done
}

# leave_result STATUS
leave_result() {
    local target executions findings figures=("seconds=$seconds" "runs=$runs")
    for target in "${targets[@]}"; do
        counted "$target"
        figures+=("executions.$target=$executions" "findings.$target=$findings")
    done
    "$root/docs/figures/result.py" end fuzz "$1" "${figures[@]}"
}

read_arguments "$@"
"$root/docs/figures/result.py" begin fuzz
build_targets
ended_early=$(mktemp -d)
trap 'rm -rf "$ended_early"' EXIT
failed=()
share=$((seconds * jobs / ${#targets[@]}))
run_all $((share > 0 ? share : 1))
table
leave_result ${#failed[@]}
[ ${#failed[@]} -eq 0 ] || fail 1 "FAILED: ${failed[*]}; findings are kept in $build/findings"
echo "fuzz: no findings"
