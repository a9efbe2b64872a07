#!/usr/bin/env python3
"""Leaves the result of a proof behind, in build/results/PROOF.json, for docs/figures/renew.sh to gather.

usage: result.py begin PROOF
       result.py end PROOF STATUS [KEY=VALUE]... [--junit FILE]...

`begin` notes commit, time and whether the tree was clean, and that the run has not ended: so it stays when the run is
killed. `end` adds whether it has passed, which STATUS 0 says, and the figures. A VALUE is JSON, or else a text; an
empty one is a figure that could not be had, and is left out. A dotted KEY is one within another. --junit adds the
counts of such a file of ctest's.
"""
import argparse
import datetime
import json
import os
import pathlib
import subprocess
import sys
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
# What renew.sh itself writes makes no other program.
WRITTEN_BY_RENEW = ("README.md", "docs/figures/figures.json")


def git(root, *arguments):
    """What git says, or None where this is no checkout."""
    command = ["git", "-c", f"safe.directory={root}", "-C", str(root), *arguments]
    try:
        done = subprocess.run(command, capture_output=True, text=True, check=False)
    except FileNotFoundError:
        return None
    return done.stdout.strip() if done.returncode == 0 else None


def state(root):
    """The commit, and whether the files are those of it."""
    excluded = [f":(exclude){path}" for path in WRITTEN_BY_RENEW]
    changes = git(root, "status", "--porcelain", "--", ".", *excluded)
    return {"commit": git(root, "rev-parse", "--short=10", "HEAD") or "unknown", "clean": changes == ""}


def store(folder, proof, result):
    """Writes the file as a whole or not at all."""
    folder.mkdir(parents=True, exist_ok=True)
    path = folder / f"{proof}.json"
    unfinished = path.with_suffix(f".{os.getpid()}")
    unfinished.write_text(json.dumps(result, indent=2) + "\n", encoding="utf-8")
    unfinished.replace(path)


def begin(root, folder, proof):
    """Notes where the run begins."""
    now = datetime.datetime.now(datetime.timezone.utc).isoformat(timespec="seconds")
    store(folder, proof, {"outcome": "unfinished", "begun": now, **state(root)})


def figure(text):
    """KEY=VALUE as a key in parts and a value."""
    key, separator, value = text.partition("=")
    if not separator or not all(key.split(".")):
        raise ValueError(f'"{text}" is not KEY=VALUE')
    try:
        return key.split("."), json.loads(value)
    except json.JSONDecodeError:
        return key.split("."), value


def add(result, key, value):
    """Puts the value in its place."""
    for part in key[:-1]:
        result = result.setdefault(part, {})
    result[key[-1]] = value


def junit_counts(paths):
    """How many tests there were in all of the files, and which did not pass."""
    counts = {"tests": 0, "skipped": 0, "failed": []}
    for path in paths:
        for test in xml.etree.ElementTree.parse(path).getroot().iter("testcase"):
            counts["tests"] += 1
            if test.find("skipped") is not None:
                counts["skipped"] += 1
            elif test.get("status") != "run":
                counts["failed"].append(test.get("name"))
    return counts


def end(root, folder, proof, status, figures, junit):
    """Adds the outcome to what `begin` has noted."""
    noted = json.loads((folder / f"{proof}.json").read_text(encoding="utf-8"))
    origin = {key: noted[key] for key in ("begun", "commit", "clean")}
    # What was measured while the files changed belongs to no commit.
    origin["clean"] = origin["clean"] and state(root) == {"commit": origin["commit"], "clean": True}
    result = {"outcome": "failed" if status else "passed", **origin}
    if junit:
        result.update(junit_counts(junit))
    for key, value in map(figure, figures):
        if value != "":
            add(result, key, value)
    store(folder, proof, result)


def main():
    """The exit status."""
    parser = argparse.ArgumentParser(usage=__doc__.partition("usage: ")[2].partition("\n\n")[0], add_help=False)
    commands = parser.add_subparsers(required=True)
    begins = commands.add_parser("begin")
    ends = commands.add_parser("end")
    for command, does in ((begins, begin), (ends, end)):
        command.add_argument("proof")
        command.set_defaults(does=does)
    ends.add_argument("status", type=int)
    ends.add_argument("figures", nargs="*", metavar="KEY=VALUE")
    ends.add_argument("--junit", action="append", default=[])
    arguments = vars(parser.parse_args())
    does = arguments.pop("does")
    try:
        does(ROOT, ROOT / "build" / "results", **arguments)
    except (OSError, ValueError, KeyError, xml.etree.ElementTree.ParseError) as error:
        print(f"figures: the result of {arguments['proof']} is not left behind: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
