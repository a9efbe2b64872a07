"""Runs the measuring programs and reads what they found."""

import pathlib
import platform
import re
import subprocess
import tempfile


class MeasureError(Exception):
    """Why something could not be measured, in one line."""


def output_of(command, **more):
    """What a program printed; it must succeed."""
    try:
        done = subprocess.run(command, check=False, capture_output=True, text=True, **more)
    except OSError as error:
        raise MeasureError(f"{command[0]}: {error.strerror}") from error
    if done.returncode != 0:
        last = (done.stderr.strip().splitlines() or ["no message"])[-1]
        raise MeasureError(f"{pathlib.Path(command[0]).name} ended with status {done.returncode}: {last}")
    return done.stdout


def instruction_counts(folder):
    """Instructions by case, the measuring's own taken off."""
    with tempfile.TemporaryDirectory() as name:
        place = pathlib.Path(name)
        listing = output_of(
            [
                "valgrind", "--tool=callgrind", "--collect-atstart=no", "--dump-instr=no", "--quiet",
                f"--callgrind-out-file={place / 'out'}", str(folder / "bench-counts"),
            ]
        )  # fmt: skip
        totals = dict(filter(None, map(total_in, place.iterdir())))
    means, parts_of = {}, {}
    for line in listing.splitlines():
        repetitions, parts, case = line.split(" ", 2)
        if case not in totals:
            raise MeasureError(f"callgrind has no count of \"{case}\"")
        means[case], parts_of[case] = totals[case] / int(repetitions), int(parts)
    if "nothing" not in means:
        raise MeasureError("bench-counts has not measured what measuring costs")
    own = means.pop("nothing")
    return {case: round((mean - own) / parts_of[case], 1) for case, mean in means.items()}


def total_in(path):
    """The case that one of callgrind's files is about, and its instructions."""
    text = path.read_text(encoding="utf-8", errors="replace")
    case = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.M)
    total = re.search(r"^(?:totals|summary): (\d+)", text, re.M)
    return (case.group(1), int(total.group(1))) if case and total else None


def facts(folder):
    """What bench-facts counts: {"allocations": {case: mean}, "asks": {what: number}, "built": {what: text}}."""
    found = {"allocations": {}, "asks": {}, "built": {}}
    for line in output_of([str(folder / "bench-facts")]).splitlines():
        kind, value, name = line.split(" ", 2)
        if kind == "built":
            found["built"][value] = name
        else:
            found[kind][name] = float(value)
    found["allocations"].pop("nothing", None)
    return found


def machine():
    """What the counts depend on beside the compiler and Qt: the C library's choice of instructions."""
    flags = pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8", errors="replace")
    wide = "AVX2" if re.search(r"\bavx2\b", flags) else "no AVX2"
    return {
        "architecture": f"{platform.machine()}, {wide}",
        "C library": " ".join(platform.libc_ver()),
        "valgrind": output_of(["valgrind", "--version"]).strip(),
    }
