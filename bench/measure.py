"""Runs the measuring programs and reads what they found."""

import os
import pathlib
import platform
import re
import shutil
import subprocess
import tempfile


NOTHING = "nothing"
RUNS = 3
ARM_FRAMES = (60, 360)  # six kinds in turn


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
    """Instructions by case: the fewest of some runs, because where memory happens to lie costs some."""
    runs = [instructions_of_a_run(folder) for _ in range(RUNS)]
    return {case: min(run[case] for run in runs) for case in runs[0]}


def instructions_of_a_run(folder):
    """Instructions by case, the measuring's own taken off."""
    with tempfile.TemporaryDirectory() as name:
        place = pathlib.Path(name)
        listing = output_of(
            [
                "valgrind", "--tool=callgrind", "--collect-atstart=no", "--dump-instr=no", "--quiet",
                f"--callgrind-out-file={place / 'out'}", str(folder / "bench-counts"),
            ],
            # What the dynamic linker does on a first call would come and go with the order of the cases.
            env={**os.environ, "LD_BIND_NOW": "1"},
        )  # fmt: skip
        totals = dict(filter(None, map(total_in, place.iterdir())))
    ran = [line.split(" ", 2) for line in listing.splitlines()]
    for _, _, case in ran:
        if case not in totals:
            raise MeasureError(f"callgrind has no count of \"{case}\"")
    # What stands before it is measured once for all repetitions.
    names = [case for _, _, case in ran]
    if NOTHING not in names:
        raise MeasureError("bench-counts has not measured what measuring costs")
    counts, own = {}, 0
    for repetitions, parts, case in ran:
        mean = totals[case] / int(repetitions)
        if case == NOTHING:
            own = mean
        else:
            counts[case] = round((mean - own) / int(parts), 1)
    return counts


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
    found["allocations"].pop(NOTHING, None)
    return found


def arm_instructions(folder):
    """Instructions for a frame on ARM, counted by qemu: None without a cross build or qemu."""
    program, root = folder / "bench-frames", os.environ.get("CANBUS_SYSROOT")
    if not program.exists() or not root or not shutil.which("qemu-arm"):
        return None
    few, many = (executed(program, root, frames) for frames in ARM_FRAMES)
    return (many - few) / (ARM_FRAMES[1] - ARM_FRAMES[0])


def executed(program, root, frames):
    """How many instructions qemu executes for so many frames: one line for each, in a block of its own."""
    command = ["qemu-arm", "-L", root, "-singlestep", "-d", "exec,nochain", str(program), str(frames)]
    lines = 0
    with subprocess.Popen(command, stderr=subprocess.PIPE) as process:
        while block := process.stderr.read(1 << 20):
            lines += block.count(b"\n")
    if process.returncode != 0:
        raise MeasureError(f"{program.name} ended with status {process.returncode} under qemu-arm")
    return lines


def machine():
    """What the counts depend on beside the compiler and Qt: the C library's choice of instructions."""
    flags = pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8", errors="replace")
    wide = "AVX2" if re.search(r"\bavx2\b", flags) else "no AVX2"
    return {
        "architecture": f"{platform.machine()}, {wide}",
        "C library": " ".join(platform.libc_ver()),
        "valgrind": output_of(["valgrind", "--version"]).strip(),
    }
