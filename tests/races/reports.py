#!/usr/bin/env python3
"""Reads what the thread sanitizer has reported in a run of the tests.

usage: reports.py FOLDER             prints each report once; fails when there is any
       reports.py --planted FOLDER   fails unless each planted race is among the reports

FOLDER holds one file for each process that had something to report, named TEST.PROCESS.
"""
import collections
import pathlib
import re
import sys

# Where support/locker.h leaves a lock out in the build with planted races, by the functions that access what
# the lock guards.
PLANTED = {
    "the append to the receive buffer": re.compile(r"\bcanbus::SerialPort::deliver\("),
    "the send state": re.compile(r"\bcanbus::VelCanBusProtocolPrivate::"),
    "the data map of the categories": re.compile(r"\bcanbus::CanBusDataMap::"),
}
# These call everybody's code, with the lock released: what happens there is no access of theirs.
OUTWARD = re.compile(r"\bcanbus::VelCanBusProtocolPrivate::(carryOut|perform)")

REPORT = re.compile(r"^WARNING: ThreadSanitizer: .*?(?=^=+$|\Z)", re.MULTILINE | re.DOTALL)
ACCESS = re.compile(r"^  (?:Previous )?(?:atomic )?(?:write|read) of size .*\n((?:    #.*\n)+)",
                    re.MULTILINE | re.IGNORECASE)

# Which program or library a frame is in, and where: the file and line before it say more.
MODULE = re.compile(r" \(\S+\+0x[0-9a-f]+\)( \(BuildId: [0-9a-f]+\))?$", re.MULTILINE)
ROOT = pathlib.Path(__file__).resolve().parents[2]
OWN_FRAME = re.compile(rf"^ +#\d+ (.*) {re.escape(str(ROOT))}/((?!build/)\S+)$", re.MULTILINE)

Report = collections.namedtuple("Report", "test text")


def read(folder):
    """All reports. A file without one (a crash, a refusal to start) counts as one whole."""
    for file in sorted(folder.iterdir()):
        test = file.name.rpartition(".")[0]
        text = MODULE.sub("", file.read_text(errors="replace"))
        texts = REPORT.findall(text) or [text]
        yield from (Report(test, text.rstrip()) for text in texts)


def what_races(report):
    """In one line: the accesses of a race by the innermost functions of this tree, or what the report says."""
    accesses = []
    for stack in ACCESS.findall(report.text):
        own = OWN_FRAME.search(stack)
        accesses.append(f"{own[1]} ({own[2]})" if own else "code of others")
    said = re.search(r"^SUMMARY: ThreadSanitizer: (.*)$", report.text, re.MULTILINE)
    return " and ".join(accesses) or (said[1] if said else "no report of the sanitizer")


def planted_place(stack):
    """Whose access a stack is: the innermost function that decides it."""
    for frame in stack.splitlines():
        if OUTWARD.search(frame):
            return None
        for place, function in PLANTED.items():
            if function.search(frame):
                return place
    return None


def print_all(reports):
    groups = collections.defaultdict(list)
    for report in reports:
        groups[what_races(report)].append(report)
    for what, group in groups.items():
        tests = sorted({report.test for report in group})
        print(f"--- {what}\n    {len(group)} times, in {', '.join(tests)}\n{group[0].text}\n")
    print(f"{len(reports)} reports of {len(groups)} kinds")
    return not reports


def has_all_planted(reports):
    tests = {place: set() for place in PLANTED}
    for report in reports:
        for stack in ACCESS.findall(report.text):
            place = planted_place(stack)
            if place:
                tests[place].add(report.test)
    for place, found_by in tests.items():
        print(f"{place}: {'found by ' + ', '.join(sorted(found_by)) if found_by else 'NOT FOUND'}")
    return all(tests.values())


def main(arguments):
    judge = print_all
    if arguments[:1] == ["--planted"]:
        judge = has_all_planted
        arguments = arguments[1:]
    if len(arguments) != 1 or arguments[0].startswith("-"):
        sys.exit(__doc__)
    return 0 if judge(list(read(pathlib.Path(arguments[0])))) else 1


sys.exit(main(sys.argv[1:]))
