"""The committed instruction and allocation counts, and how a run compares with them."""

import json

TOLERANCE = 0.05
# Fractions of an instruction come from how often something amortised happens within the run.
SLACK = 0.5


class BaselineError(Exception):
    """What is wrong with the baseline's file, in one line."""


def load(path):
    """The baseline as {"made with": {name: text}, "counts": {name: number}}."""
    try:
        content = json.loads(path.read_text(encoding="utf-8"))
    except OSError as error:
        raise BaselineError(f"{path}: {error.strerror}: ./dev bench --update makes it") from error
    except ValueError as error:
        raise BaselineError(f"{path}: no JSON: {error}") from error
    if not isinstance(content, dict):
        raise BaselineError(f"{path}: it takes an object with \"made with\" and \"counts\"")
    for key in ("made with", "counts"):
        if not isinstance(content.get(key), dict):
            raise BaselineError(f"{path}: \"{key}\" is missing, or no object")
    for name, value in content["counts"].items():
        if isinstance(value, bool) or not isinstance(value, (int, float)) or value < 0:
            raise BaselineError(f"{path}: the count of \"{name}\" is {json.dumps(value)}, which is no number from 0 on")
    return content


def store(path, made_with, counts):
    """Makes the baseline of this run."""
    content = {"made with": made_with, "counts": dict(sorted(counts.items()))}
    path.write_text(json.dumps(content, indent=2) + "\n", encoding="utf-8")


class Comparison:
    """What has moved between the baseline and a run, by more than the tolerance."""

    def __init__(self, base, made_with, counts):
        self.differing = sorted(
            key for key in {*base["made with"], *made_with} if base["made with"].get(key) != made_with.get(key)
        )
        self._base_made_with, self._made_with = base["made with"], made_with
        self.missing = sorted(base["counts"].keys() - counts.keys())
        self.unknown = sorted(counts.keys() - base["counts"].keys())
        both = [(name, base["counts"][name], counts[name]) for name in sorted(base["counts"].keys() & counts.keys())]
        self.above = [row for row in both if row[2] > row[1] * (1 + TOLERANCE) + SLACK * (row[1] > 0)]
        self.below = [row for row in both if row[2] < row[1] * (1 - TOLERANCE) - SLACK]

    @property
    def passes(self):
        """Whether nothing is above the baseline, and both have the same rows. Where the baseline was made with another
        compiler, library or processor, instructions are not comparable, and allocations alone count."""
        above = [row for row in self.above if not self.differing or row[0].startswith("allocations ")]
        return not (above or self.missing or self.unknown)

    def lines(self):
        """What there is to be said, a line for each row that moved."""
        for name, before, now in self.above + self.below:
            change = f"{now / before - 1:+.1%}" if before else "from none"
            verdict = "ABOVE" if now > before else "below"
            yield f"  {verdict}  {name}: {number(before)} -> {number(now)} ({change})"
        for name in self.missing:
            yield f"  MISSING  {name}: in the baseline, and not measured"
        for name in self.unknown:
            yield f"  MISSING  {name}: measured, and not in the baseline"
        for key in self.differing:
            yield (
                f"  the baseline was made with {key} {self._base_made_with.get(key, 'unknown')}, and this is"
                f" {self._made_with.get(key, 'unknown')}: what instructions moved by may come of that alone"
            )
        if self.below and not self.above:
            yield "  to keep what was gained: ./dev bench --update"
        if not self.passes:
            yield "  where this is meant: ./dev bench --update, in a commit that says why"


def number(value):
    """A count as people read it."""
    return f"{value:,.0f}" if value == round(value) or value >= 100 else f"{value:,.2f}"
