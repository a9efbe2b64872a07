"""The rows of the table: what was measured, the bare minimum, and the goal."""

import dataclasses
import typing

RECEIVED = {
    "10-byte frame": 6.0,
    "15 bytes of payload": 3.2,
    "60 bytes of payload": 1.5,
    "200 bytes, all 9F": 2.7,
    "2 KB back to back": 3.7,
}
MOST = {
    "receive/2,046 bytes of doubled escapes": ("one pass over 2,046 bytes of doubled escapes", 50000),
    "receive/2 KB of noise without an escape": ("one pass over 2 KB of noise without an escape", 400),
    "receive/2 KB of noise": ("one pass over 2 KB of noise, eight escapes in it", 400),
    "log line/off": ("a log line, its level off", 35),
    "log line/on, empty handler": ("a log line, into an empty handler", 6000),
    "split 60 bytes of text": ("splitting 60 bytes of text", 4000),
    "build a 10-byte command": ("building a 10-byte command", 400),
    "idle tick": ("an idle tick", 120),
}
FIXED_WIDTH = ("climate", "gauges", "vehicle", "parking")
WITH_TEXTS = ("gauges with texts", "vehicle with texts")
PASS = "pass/store, signal and acknowledge 15 bytes"
STRAIGHT = 0.05


@dataclasses.dataclass
class Row:
    """A line of the table. `met` is None where there is no goal."""

    what: str
    measured: str
    bare: str = ""
    ratio: str = ""
    goal: str = "reported"
    met: typing.Optional[bool] = None

    def verdict(self):
        """The last column."""
        return "" if self.met is None else "met" if self.met else "MISSED"


def instructions(value):
    """A count with its unit."""
    return f"{value:,.0f} instr."


def most(what, value, goal, unit="instr.", bare=None):
    """A row with an upper limit for the value itself."""
    return Row(
        what,
        f"{value:,.0f} {unit}",
        "" if bare is None else f"{bare:,.0f} {unit}",
        "" if not bare else f"{value / bare:.2f}",
        f"at most {goal:,} {unit}",
        value <= goal,
    )


def times_bare(what, value, bare, goal, show=instructions):
    """A row with an upper limit for the ratio to the bare minimum."""
    ratio = value / bare
    return Row(what, show(value), show(bare), f"{ratio:.2f}", f"at most {goal:g} times", ratio <= goal)


def count_rows(counts, facts):
    """The rows of instruction and allocation counts."""
    allocated = facts["allocations"]
    for name, goal in RECEIVED.items():
        case = f"receive/{name}"
        yield times_bare(f"receive core, {name}: a frame", counts[case], counts[f"{case}/bare"], goal)
    worst = max(allocated[f"receive/{name}"] for name in RECEIVED)
    yield Row("receive core: allocations for a frame", f"{worst:g}", goal="0", met=worst == 0)
    yield Row(
        "with storing, signal and ACK: allocations",
        f"{allocated[PASS]:g}", goal="at most 9", met=allocated[PASS] <= 9,
    )  # fmt: skip
    yield Row("with storing, signal and ACK: a frame", instructions(counts[PASS]))
    yield from straight_rows(counts)
    for case, (what, goal) in MOST.items():
        yield most(what, counts[case], goal, bare=counts.get(f"{case}/bare"))
    asked = facts["asks"]["the 100 lines after it"]
    yield Row("asking for the thread's id, in 100 lines after a thread's first", f"{asked:g}", goal="0", met=asked == 0)
    for group in FIXED_WIDTH + WITH_TEXTS:
        yield from decoding_rows(group, counts, allocated)
    yield Row("instance() to port open", instructions(counts["start"]))


def decoding_rows(group, counts, allocated):
    """What a payload of this group costs."""
    same, changed = f"decode {group}/nothing new", f"decode {group}/all new"
    free = group in FIXED_WIDTH
    yield Row(f"decoding {group}, nothing new", instructions(counts[same]))
    yield Row(f"decoding {group}, all new", instructions(counts[changed]))
    yield Row(
        f"decoding {group}, nothing new: allocations",
        f"{allocated[same]:g}",
        goal="0" if free else "reported",
        met=allocated[same] == 0 if free else None,
    )


def straight_rows(counts):
    """Whether the cost grows in proportion to what is read."""
    for kind in ("frame length", "buffer length"):
        points = [(int(case.split("/")[1]), value) for case, value in counts.items() if case.startswith(f"{kind}/")]
        fixed, slope, residual = fitted_line(points)
        yield Row(
            f"receive core over {kind}",
            f"{fixed:,.0f} + {slope:.3f} a byte, residual {residual:.1%}",
            goal=f"a line, residual at most {STRAIGHT:.0%}",
            met=residual <= STRAIGHT,
        )


def fitted_line(points):
    """The line of least squares through the points, and the largest distance from it, as a part of the largest
    value."""
    count = len(points)
    mean_x, mean_y = sum(x for x, _ in points) / count, sum(y for _, y in points) / count
    slope = sum((x - mean_x) * (y - mean_y) for x, y in points) / sum((x - mean_x) ** 2 for x, _ in points)
    fixed = mean_y - slope * mean_x
    residual = max(abs(y - fixed - slope * x) for x, y in points) / max(y for _, y in points)
    return fixed, slope, residual


def table(rows):
    """The rows as text, with columns of equal width."""
    lines = [("what", "measured", "bare minimum", "ratio", "goal", "")]
    lines += [(row.what, row.measured, row.bare, row.ratio, row.goal, row.verdict()) for row in rows]
    widths = [max(len(line[column]) for line in lines) for column in range(6)]
    lines.insert(1, tuple("-" * width for width in widths))
    return "\n".join("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip() for line in lines)
