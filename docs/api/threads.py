#!/usr/bin/env python3
"""A header as Doxygen reads it: each operation tells the thread that its class names for all of them.

A class says "@thread{...}" once, and "@emitted{...}" where it has signals; an operation that differs says its own.
Nothing else is changed, and lines stay where they are.
"""

from __future__ import annotations

import re
import sys

SAYS = re.compile(r"@(thread|emitted)\{((?:[^{}\\]|\\.)*)\}")
CLASS = re.compile(r"(?:class|struct) (?:CANBUS_EXPORT )?\w+[^;]*\{$")
ACCESS = re.compile(r"(Q_SIGNALS|public(?: Q_SLOTS)?|protected|private(?: Q_SLOTS)?):$")


def is_comment(line: str) -> bool:
    return line.strip().startswith("///") and not line.strip().startswith("///<")


class Header:
    def __init__(self, lines: list[str]) -> None:
        self.lines = lines
        self.open: list[tuple[int, dict[str, str], str]] = []  # of each class: depth, what it says, access
        self.depth = 0

    def told(self) -> list[str]:
        comment: list[int] = []
        for number, line in enumerate(self.lines):
            if is_comment(line):
                comment.append(number)
                continue
            self.read(number, line.strip(), comment)
            if line.strip() and not line.strip().startswith("template <"):
                comment = []
        return self.lines

    def read(self, number: int, line: str, comment: list[int]) -> None:
        said = dict(SAYS.findall(" ".join(self.lines[each].strip().lstrip("/ ") for each in comment)))
        if CLASS.match(line):
            self.open.append((self.depth, said, "public" if line.startswith("struct") else "private"))
        elif self.open and (access := ACCESS.match(line)):
            depth, of_class, _ = self.open[-1]
            self.open[-1] = (depth, of_class, access[1])
        elif self.open and "(" in line.split("///")[0] and self.depth == self.open[-1][0] + 1:
            self.tell(number, comment, said)
        self.depth += line.split("//")[0].count("{") - line.split("//")[0].count("}")
        if self.open and self.depth <= self.open[-1][0] and not CLASS.match(line):
            self.open.pop()

    def tell(self, number: int, comment: list[int], said: dict[str, str]) -> None:
        _, of_class, access = self.open[-1]
        kind = "emitted" if access == "Q_SIGNALS" else "thread"
        where = number if "///<" in self.lines[number] else comment[-1] if comment else None
        if where is not None and kind in of_class and kind not in said:
            self.lines[where] = f"{self.lines[where]} @{kind}{{{of_class[kind]}}}"


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as header:
        print("\n".join(Header(header.read().splitlines()).told()))
