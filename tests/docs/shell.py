"""Commands of a document, as a reader copies them into a shell."""

import dataclasses
import re

_HEREDOC = re.compile(r"<<-?\s*'?\"?(\w+)")


@dataclasses.dataclass(frozen=True)
class Command:
    """One command of a block: where it stands, and what it is, on one line where it has no text of its own."""

    document: str
    line: int
    block: int
    text: str


def normal(text):
    """A command without a comment behind it, and with single blanks between its words."""
    text = re.sub(r"\\\n\s*", " ", text)
    if "\n" in text:
        return text.strip()
    return re.sub(r"[ \t]+", " ", re.sub(r"(^|\s+)# .*$", "", text)).strip()


def of_block(document, block):
    """The commands of a block: lines, with those that continue one, and texts that stand in the command."""
    lines = block.text.rstrip("\n").split("\n")
    commands, number = [], 0
    while number < len(lines):
        start, text = number, lines[number]
        while text.endswith("\\") and number + 1 < len(lines):
            number += 1
            text += "\n" + lines[number]
        heredoc = _HEREDOC.search(text)
        while heredoc and number + 1 < len(lines):
            number += 1
            text += "\n" + lines[number]
            if lines[number] == heredoc[1]:
                break
        number += 1
        if normal(text):
            commands.append(Command(document, block.line + start, block.line, normal(text)))
    return commands


def of_document(document):
    """The commands of all shell blocks of a document, in order."""
    found = []
    for block in document.blocks:
        if block.language in ("sh", "bash", "shell", "console"):
            found += of_block(document.name, block)
    return found
