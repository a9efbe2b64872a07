#!/usr/bin/env bash
# Runs the fuzz targets: see "Fuzzing" in docs/testing.md.
set -euo pipefail

usage() {
    cat <<'USAGE'
fuzz/run.sh [SECONDS] [--target NAME] [--runs N]: builds the fuzz targets into build/fuzz and runs them.

  SECONDS        how long all targets run together; 60 by default
  --target NAME  run this target alone, for all of the time
  --runs N       run each target for N executions, however long that takes

Targets: stream frames protocol decoders texts sendqueue recording scenario.
Building takes 3 minutes on two cores, once. The first finding of a target ends its run, is kept in
build/fuzz/findings, and fails this script.
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
targets=("${all_targets[@]}")
seconds=60
runs=

is_number() { [[ $1 =~ ^[1-9][0-9]{0,9}$ ]]; }

read_arguments() {
    while [ $# -gt 0 ]; do
        case $1 in
            --help | -h) usage && exit 0 ;;
            --target)
                [[ " ${all_targets[*]} " == *" ${2:-} "* ]] || fail 2 "there is no target \"${2:-}\": ${all_targets[*]}"
                targets=("$2")
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
        scenario) echo 4096 ;;
        stream | recording) echo 1024 ;;
        protocol) echo 256 ;;
        sendqueue) echo 128 ;;
        *) echo 512 ;;
    esac
}

# run_target NAME SECONDS: what it finds new is kept in build/fuzz/corpus, where the next run begins.
run_target() {
    local target=$1 log=$build/$1.log share=$2 start=$SECONDS
    local limits=(-max_total_time="$share") dictionary=() seeds=("$root/fuzz/corpus/$target")
    [ -z "$runs" ] || limits=(-runs="$runs")
    [ ! -f "$root/fuzz/$target.dict" ] || dictionary=(-dict="$root/fuzz/$target.dict")
    [ ! -d "$root/fuzz/regressions/$target" ] || seeds+=("$root/fuzz/regressions/$target")
    [ "$target" != scenario ] || seeds+=("$root/scenarios" "$root/scenarios/faults")
    mkdir -p "$build/corpus/$target" "$build/findings"
    # Leaks are looked for where the inputs are replayed: here, what is kept for the next input looks like one.
    if ASAN_OPTIONS="quarantine_size_mb=8:malloc_context_size=8:${ASAN_OPTIONS:-}" \
        UBSAN_OPTIONS="print_stacktrace=1:${UBSAN_OPTIONS:-}" \
        "$build/fuzz/fuzz_$target" "${limits[@]}" "${dictionary[@]}" -max_len="$(longest_input "$target")" \
        -timeout=10 -rss_limit_mb=2048 -detect_leaks=0 -print_final_stats=1 \
        -artifact_prefix="$build/findings/$target-" "$build/corpus/$target" "${seeds[@]}" >"$log" 2>&1; then
        report "$target" "$log" $((SECONDS - start))
    else
        report_finding "$target" "$log"
        return 1
    fi
}

# report NAME LOG SECONDS
report() {
    local executions coverage
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$2")
    coverage=$(sed -n 's/^#[0-9]*.*DONE *cov: \([0-9]*\) ft: \([0-9]*\).*/\1 edges, \2 features/p' "$2")
    printf 'fuzz: %-10s %10s executions in %s s, coverage %s, no finding\n' "$1" "$executions" "$3" "$coverage"
}

# report_finding NAME LOG
report_finding() {
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

read_arguments "$@"
build_targets
share=$((seconds / ${#targets[@]}))
[ "$share" -gt 0 ] || share=1
failed=()
for target in "${targets[@]}"; do
    run_target "$target" "$share" || failed+=("$target")
done
[ ${#failed[@]} -eq 0 ] || fail 1 "FAILED: ${failed[*]}; findings are kept in $build/findings"
echo "fuzz: no findings"
