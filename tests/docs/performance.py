"""docs/performance.md against bench/: its last run is within what the baseline lets pass, its goals are the goals."""

import json
import pathlib
import re
import sys

TOLERANCE = 0.05


def _expected(root):
    """The rows of the counts that the baseline keeps, as the bench prints them."""
    sys.path.insert(0, str(root / "bench"))
    import rows  # pylint: disable=import-outside-toplevel

    counts = json.loads((root / "bench/baseline.json").read_text(encoding="utf-8"))["counts"]
    allocated = {name.removeprefix("allocations "): value for name, value in counts.items()
                 if name.startswith("allocations ")}
    for name, goal in rows.RECEIVED.items():
        case = f"receive/{name}"
        yield rows.times_bare(f"receive core, {name}: a frame", counts[case], counts[f"{case}/bare"], goal)
    for case, (what, goal) in rows.MOST.items():
        yield rows.most(what, counts[case], goal, bare=counts.get(f"{case}/bare"))
    for group in rows.FIXED_WIDTH + rows.WITH_TEXTS:
        yield from rows.decoding_rows(group, counts, allocated)


def number(cell):
    """The number that a cell begins with."""
    found = re.match(r"[\d,.]+", cell)
    return float(found[0].replace(",", "")) if found else None


def differ(written, expected):
    """Whether two cells say different things: other numbers than the baseline lets pass, or other words."""
    one, other = number(written), number(expected)
    if one is None or other is None:
        return written != expected
    return abs(one - other) > TOLERANCE * other


def check(root):
    """The rows of the last run that the baseline contradicts, and those that are missing."""
    root = pathlib.Path(root)
    page = (root / "docs/performance.md").read_text(encoding="utf-8").partition("\n## The last run\n")[2]
    table = {cells[0]: cells for cells in ([cell.strip() for cell in line.strip("|").split("|")]
                                           for line in page.splitlines() if line.startswith("|"))}
    findings = []
    for row in _expected(root):
        written = table.get(row.what)
        if written is None:
            findings.append(f"docs/performance.md: has no row \"{row.what}\"")
        elif differ(written[1], row.measured) or differ(written[2], row.bare):
            findings.append(f"docs/performance.md: {row.what}: {written[1]}, and the baseline has {row.measured}")
        elif written[4:6] != [row.goal, row.verdict()]:
            findings.append(f"docs/performance.md: {row.what}: the goal is {row.goal}, {row.verdict()}")
    return findings
