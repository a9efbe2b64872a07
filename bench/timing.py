"""The rows of times, of a whole process, and of what a line loses."""

import json
import pathlib
import re
import statistics

import line
import measure
from rows import Row

FULL_LINE_SECONDS, LONG_SECONDS = 20, 600
FRAMES_A_SECOND = 1 / (line.FRAME_BYTES * line.BYTE_SECONDS)
STARTS = 11
REPLAY_SECONDS = 20
REPLAY = pathlib.Path(__file__).resolve().parent / "replay_timing"


def rows(folder, arm_folder, everything, is_long):
    """Measures all of it, and yields the rows."""
    yield from latency_rows(folder, everything)
    yield from full_line_rows(folder, everything, is_long)
    yield arm_row(arm_folder, everything)
    yield from start_rows(folder, everything)
    yield replay_row(folder, everything)


def latency_rows(folder, everything):
    """From a control to the line and from the line to a slot, and what an idle process does."""
    report = json.loads(measure.output_of([str(folder / "bench-times"), "--benchmark_format=json"]))
    found = {each["name"].split("/iterations:")[0]: each for each in report["benchmarks"]}
    everything["times"] = found
    control, slot, idle = found["control to line"], found["line to slot"], found["idle"]
    for name, key in (("median", "median_us"), ("99th percentile", "p99_us")):
        ratio = control[key] / control[f"bare_{key}"]
        yield Row(
            f"control to the first byte on the line, {name}",
            us(control[key]), us(control[f"bare_{key}"]), f"{ratio:.2f}", "at most 1.6 times", ratio <= 1.6,
        )  # fmt: skip
    yield Row(
        "a bare write posted to a thread of its own, to the first byte, median",
        us(control["posted_median_us"]), us(control["bare_median_us"]),
        f"{control['posted_median_us'] / control['bare_median_us']:.2f}",
    )  # fmt: skip
    call, bare = control["call_median_us"], control["bare_median_us"]
    yield Row(
        "the control's call itself, median", us(call), us(bare), f"{call / bare:.2f}",
        "at most the bare write's median", call <= bare,
    )  # fmt: skip
    tick = slot["tick_us"]
    late = slot["mean_us"] - tick / 2
    yield Row(
        "last byte to slot, mean less half a tick",
        us(late), f"tick {us(tick)}", goal="at most 300 µs", met=late <= 300,
    )  # fmt: skip
    late = slot["p99_us"] - tick
    yield Row("last byte to slot, 99th percentile less a tick", us(late), goal="at most 500 µs", met=late <= 500)
    ratio = idle["wakeups"] / idle["bare_wakeups"]
    yield Row(
        "idle: wake-ups a second", f"{idle['wakeups']:.1f}", f"{idle['bare_wakeups']:.1f}", f"{ratio:.3f}",
        "at most 1.02 times", ratio <= 1.02,
    )  # fmt: skip


def full_line_rows(folder, everything, is_long):
    """A line that brings a frame of 58 bytes every 10.07 ms."""
    whole = line.full_line(folder / "bench-host", FULL_LINE_SECONDS, line.FRAME_BYTES)
    seconds = LONG_SECONDS if is_long else FULL_LINE_SECONDS
    blocks = line.full_line(folder / "bench-host", seconds, line.FIFO_BYTES)
    everything["full line"] = {"in frames": whole, "in blocks of 16 bytes": blocks}
    share = whole["processor seconds"] / whole["seconds"]
    yield Row("full line, a frame at a time: share of a core", f"{share:.2%}", goal="under 1%", met=share < 0.01)
    share = blocks["processor seconds"] / blocks["seconds"]
    yield Row("full line, in blocks of 16 bytes: share of a core", f"{share:.2%}")
    yield Row(
        f"full line for {seconds} s, {blocks['sent']:,} frames of 58 bytes: lost",
        f"{blocks['lost']:,}, at most {blocks['most bytes waiting']:.0f} bytes waiting",
        goal="none" if is_long else "none (and none in ten minutes: --long)",
        met=blocks["lost"] == 0,
    )


def arm_row(folder, everything):
    """The same frames on ARM."""
    what = "a frame of the full line on ARM, under qemu"
    each = measure.arm_instructions(folder)
    everything["ARM instructions for a frame"] = each
    if each is None:
        return Row(what, "not measured: needs --arm and CANBUS_SYSROOT")
    return Row(what, f"{each:,.0f} instr.", ratio=f"{each * FRAMES_A_SECOND / 1e6:.2f} million a second")


def start_rows(folder, everything):
    """What it takes to have the library."""
    started = line.starts(folder / "bench-host", STARTS)
    resident = line.resident(folder)
    everything["start"] = {"microseconds": started, "resident kB": resident}
    bare = resident["bench-bare"]
    yield Row("instance() to port open, median", us(statistics.median(started)))
    for name, what in (("bench-host", "resident memory"), ("bench-host-shared", "resident memory, Qt Widgets linked")):
        yield Row(what, f"{resident[name]:,} kB", f"{bare:,} kB", f"+ {resident[name] - bare:,} kB")


def replay_row(folder, everything):
    """How exactly the box replays a recording."""
    text = measure.output_of([str(REPLAY), str(folder.parent / "bin"), "--seconds", str(REPLAY_SECONDS)])
    everything["replay"] = text.splitlines()
    found = re.search(r"^from the recorded time: (median [\d.]+ ms), maximum ([\d.]+) ms, (\d+ of \d+)", text, re.M)
    if not found:
        raise measure.MeasureError(f"{REPLAY.name} has said something else than was expected")
    median, maximum, above = found.groups()
    return Row(
        "a replay's frames, from their recorded times",
        f"{median}, maximum {maximum} ms, {above} above 2 ms",
        goal="at most 2 ms", met=float(maximum) <= 2,
    )  # fmt: skip


def us(value):
    """A time in microseconds."""
    return f"{value:,.1f} µs" if abs(value) < 100 else f"{value:,.0f} µs"
