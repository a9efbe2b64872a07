#!/usr/bin/env python3
"""Measures the library and prints one table, beside the goals: see docs/performance.md."""

import argparse
import json
import os
import pathlib
import subprocess
import sys

import baseline
import measure
import rows
import timing

ROOT = pathlib.Path(__file__).resolve().parents[1]
ARM_BUILD = ROOT / "build/armhf"
BASELINE = ROOT / "bench/baseline.json"


def parsed_arguments():
    """The command line."""
    parser = argparse.ArgumentParser(prog="./dev bench", description=__doc__)
    parser.add_argument("--update", action="store_true", help="make this run's counts the baseline")
    parser.add_argument("--json", type=pathlib.Path, metavar="FILE", help="write all that was measured to FILE too")
    parser.add_argument("--only", choices=("counts", "times"), help="measure only these")
    parser.add_argument("--counts", action="store_const", const="counts", dest="only", help="like --only counts")
    parser.add_argument("--long", action="store_true", help="the full line for ten minutes instead of 20 s")
    parser.add_argument(
        "--arm", type=pathlib.Path, default=ARM_BUILD, metavar="FOLDER", help="the cross build (default: build/armhf)"
    )
    parser.add_argument("--build", type=pathlib.Path, required=True, help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    if arguments.update and arguments.only == "times":
        parser.error("--update takes counts, and --only times measures none")
    return arguments


def baseline_counts(counts, facts):
    """All that the baseline keeps: instructions and allocations by case."""
    # Whether the beginning of another thread falls into the start is chance; where long frames and
    # buffers lie in memory costs several per cent, and it is the line through them that counts.
    counts = {case: value for case, value in counts.items() if case != "start" and " length/" not in case}
    allocations = {f"allocations {case}": value for case, value in facts["allocations"].items()}
    return {**counts, **allocations}


def compare(made_with, counts):
    """Prints what moved since the baseline. Returns whether that is well."""
    comparison = baseline.Comparison(baseline.load(BASELINE), made_with, counts)
    lines = list(comparison.lines())
    verdict = "as in the baseline" if comparison.passes else "NOT as in the baseline"
    print(f"\ncounts: {len(counts)}, {verdict}" + (", but:" if lines and comparison.passes else ":" if lines else ""))
    for line in lines:
        print(line)
    return comparison.passes


def measured_counts(folder, everything, table):
    """Fills in the counts. Returns them as the baseline keeps them, with what they were made with."""
    counts, facts = measure.instruction_counts(folder), measure.facts(folder)
    made_with = {**facts["built"], **measure.machine()}
    table += rows.count_rows(counts, facts)
    everything.update({"made with": made_with, "instructions": counts, **facts})
    return made_with, baseline_counts(counts, facts)


def result(*arguments):
    """Leaves behind what docs/figures/renew.sh gathers."""
    subprocess.run([sys.executable, ROOT / "docs/figures/result.py", *arguments], check=True)


def leave_result(arguments, table, as_baseline):
    """The goals; and whether the counts are the baseline's, None where they were not compared."""
    missed = [row.what for row in table if row.met is False]
    figures = {
        "met": sum(row.met is True for row in table),
        "missed": missed,
        "as_baseline": as_baseline,
        "only": arguments.only,
        "long": arguments.long,
    }
    status = "1" if as_baseline is False else "0"
    result("end", "bench", status, *(f"{key}={json.dumps(value)}" for key, value in figures.items()))


def run(arguments):
    """Measures, prints, stores and compares. Returns the exit status."""
    folder = arguments.build / "bench"
    everything = {"load average at start": os.getloadavg()}
    table, as_baseline = [], None
    result("begin", "bench")
    if arguments.only != "times":
        made_with, counts = measured_counts(folder, everything, table)
    if arguments.only != "counts":
        table += timing.rows(folder, arguments.arm / "bench", everything, arguments.long)
    print(rows.table(table))
    missed = sum(row.met is False for row in table)
    print(f"\n{sum(row.met is True for row in table)} goals met, {missed} missed")
    if arguments.only != "times":
        if arguments.update:
            baseline.store(BASELINE, made_with, counts)
            print(f"\ncounts: {len(counts)}, now the baseline")
        else:
            as_baseline = compare(made_with, counts)
    everything["load average at end"] = os.getloadavg()
    everything["rows"] = [vars(row) for row in table]
    if arguments.json:
        arguments.json.write_text(json.dumps(everything, indent=2) + "\n", encoding="utf-8")
    leave_result(arguments, table, as_baseline)
    return 1 if as_baseline is False else 0


def main():
    """The exit status."""
    try:
        return run(parsed_arguments())
    except (baseline.BaselineError, measure.MeasureError) as error:
        print(f"bench: {error}", file=sys.stderr)
        return 1
    except OSError as error:
        print(f"bench: {error.filename}: {error.strerror}", file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main())
