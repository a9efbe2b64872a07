"""The drawing of the structure against the sources: its arrows are the includes, its products those that are used."""

import dataclasses
import pathlib
import re

import includes

_NODE = re.compile(r"^\s*(\w+)\s*\[(.*?)\]\s*$", re.MULTILINE | re.DOTALL)
_EDGE = re.compile(r"^\s*(\w+)\s*->\s*(\w+)[ \t]*(?:\[(.*)\])?$", re.MULTILINE)
_COMMENT = re.compile(r'comment="([^"]*)"')


@dataclasses.dataclass
class Drawing:
    """What docs/diagrams/structure.dot says."""

    arrows: dict  # {(from, to): drawn dashed}
    frames: dict  # {frame: its parts}
    products: dict  # {folder of headers: the parts that use it}


def read(text):
    """The arrows, frames and products of the source of the drawing."""
    text = re.sub(r"^\s*//.*$", "", text, flags=re.MULTILINE)
    frames, products = {}, {}
    for name, attributes in _NODE.findall(text):
        comment = _COMMENT.search(attributes)
        if comment and ":" in comment[1]:
            folder, parts = comment[1].split(":")
            products[folder] = set(parts.split())
        elif comment:
            frames[name] = set(comment[1].split())
    arrows = {}
    for start, end, attributes in _EDGE.findall(text.partition("edge [class=outside")[0]):
        for edge in [(start, end)] + ([(end, start)] if "dir=both" in attributes else []):
            arrows[edge] = "style=dashed" in attributes
    return Drawing(arrows, frames, products)


def _arrow_findings(drawing, edges):
    covered = set()
    for (start, end), dashed in drawing.arrows.items():
        starts, ends = drawing.frames.get(start, {start}), drawing.frames.get(end, {end})
        meant = {edge: kinds for edge, kinds in edges.items() if edge[0] in starts and edge[1] in ends}
        covered.update(meant)
        for part in sorted((starts - {edge[0] for edge in meant}) | (ends - {edge[1] for edge in meant})):
            yield f"an arrow says that {start} includes {end}, and {part} has no part in it"
        kinds = set().union(*meant.values())
        if meant and dashed and "h" in kinds:
            yield f"{start} includes {end} in a header too, and the arrow is dashed"
        if meant and not dashed and "h" not in kinds:
            yield f"{start} includes {end} in .cpp files alone, and the arrow is not dashed"
    for edge in sorted(edges.keys() - covered):
        yield f"{edge[0]} includes {edge[1]}, and no arrow says so"


def _product_findings(drawing, used):
    everywhere = set(includes.PARTS.values())
    for folder in sorted(used.keys() | drawing.products.keys()):
        drawn = drawing.products.get(folder, set())
        missing = used.get(folder, set()) ^ (everywhere if drawn == {"all"} else drawn)
        if missing:
            yield f"{folder}: drawn and included differ in {', '.join(sorted(missing))}"


def _box_findings(root):
    """The table of the simulated box's folders: each knows those above it alone."""
    page = (pathlib.Path(root) / "docs/architecture.md").read_text(encoding="utf-8")
    order = re.findall(r"^\| `(boxsim/\w+)` \|", page, re.MULTILINE)
    for folder in sorted(path for path in (pathlib.Path(root) / "boxsim").glob("*/") if includes.sources(root, path)):
        if f"boxsim/{folder.name}" not in order:
            yield f"boxsim/{folder.name} is in no row of architecture.md"
    for place, folder in enumerate(order):
        for other in sorted(includes.folders_included(root, folder)):
            if other in order and order.index(other) > place:
                yield f"{folder} includes {other}, which is below it in architecture.md"


def check(root):
    """What the drawing says and the sources do not, and the other way round."""
    source = pathlib.Path(root) / "docs/diagrams/structure.dot"
    drawing = read(source.read_text(encoding="utf-8"))
    findings = [*_arrow_findings(drawing, includes.edges(root)), *_product_findings(drawing, includes.products(root))]
    return [f"structure.dot: {finding}" for finding in findings] + list(_box_findings(root))
