"""Markdown as the documents use it: fenced blocks, headings, links and code in backticks."""

import dataclasses
import pathlib
import re

_FENCE = re.compile(r"^(\s*)(```+|~~~+)\s*(\S*)")
_HEADING = re.compile(r"^(#{1,6})\s+(.*?)\s*#*$")
_CODE = re.compile(r"(?<!`)(`+)(?!`)(.+?)(?<!`)\1(?!`)", re.DOTALL)
_LINK = re.compile(
    r"(!?)\[((?:[^\[\]]|\[[^\]]*\])*)\]"  # what is shown
    r"\(\s*<?([^()\s>]*(?:\([^()]*\)[^()\s>]*)*)>?(?:\s+\"[^\"]*\")?\s*\)"  # where it leads
)
_REFERENCE = re.compile(r"^\s{0,3}\[([^\]]+)\]:\s*(\S+)", re.MULTILINE)


@dataclasses.dataclass(frozen=True)
class Span:
    """Something in a document, and the line on which it begins."""

    line: int
    text: str


@dataclasses.dataclass(frozen=True)
class Link(Span):
    """A link: its target, and whether it shows an image."""

    image: bool = False
    shown: str = ""


@dataclasses.dataclass(frozen=True)
class Block(Span):
    """A fenced block: its language, and its lines as a reader copies them."""

    language: str = ""


def documents(root):
    """Every Markdown file of the tree but those that a build has made."""
    root = pathlib.Path(root)
    found = []
    for path in sorted(root.rglob("*.md")):
        parts = path.relative_to(root).parts
        if parts[0] != "build" and not any(part.startswith(".") for part in parts):
            found.append(Document(path, root))
    return found


def slug(heading):
    """The anchor of a heading, as the usual renderers make it."""
    text = re.sub(r"!?\[([^\]]*)\]\([^)]*\)", r"\1", heading).replace("`", "").replace("*", "")
    return re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")


class Document:
    """One file, taken apart."""

    def __init__(self, path, root):
        self.path = pathlib.Path(path)
        self.name = str(self.path.relative_to(root))
        self.blocks = []
        self.headings = []
        self.prose = []
        self._take_apart(self.path.read_text(encoding="utf-8").split("\n"))
        text = "\n".join(self.prose)
        self.code = [Span(self._line(text, found), " ".join(found[2].split())) for found in _CODE.finditer(text)]
        plain = _CODE.sub(lambda found: re.sub(r"[^\n]", "\0", found[0]), text)
        self.links = [Link(self._line(plain, found), found[3], bool(found[1]), found[2])
                      for found in _LINK.finditer(plain)]
        self.links += [Link(self._line(plain, found), found[2]) for found in _REFERENCE.finditer(plain)]

    def anchors(self):
        """The anchors of the headings: a second one of the same name gets a number."""
        seen, anchors = {}, set()
        for heading in self.headings:
            name = slug(heading.text)
            count = seen.get(name, 0)
            seen[name] = count + 1
            anchors.add(f"{name}-{count}" if count else name)
        return anchors

    @staticmethod
    def _line(text, found):
        return text.count("\n", 0, found.start()) + 1

    def _take_apart(self, lines):
        fence = None
        for number, line in enumerate(lines, 1):
            found = _FENCE.match(line)
            if fence is None and found:
                fence = (found[2], number + 1, found[3], len(found[1]), [])
            elif fence is not None and found and found[2].startswith(fence[0]) and not found[3]:
                self.blocks.append(Block(fence[1], "\n".join(fence[4]) + "\n", fence[2]))
                fence = None
            elif fence is not None:
                fence[4].append(line[fence[3]:] if not line[:fence[3]].strip() else line)
            # A line of a block counts as an empty one of the prose, so that lines keep their numbers.
            self.prose.append("" if fence is not None or found else line)
            heading = _HEADING.match(self.prose[-1])
            if heading:
                self.headings.append(Span(number, heading[2]))
        if fence is not None:
            raise ValueError(f"{self.name}:{fence[1] - 1}: the fenced block has no end")
