"""The part of bitbake's language that the layer uses, read line by line."""

from __future__ import annotations

import re
from dataclasses import dataclass, field
from pathlib import Path

NAME = r"[A-Za-z_][\w${}./+-]*(?::[\w${}.+-]+)*"
ASSIGNMENT = re.compile(rf"^(?:export\s+)?({NAME})(?:\[([\w-]+)\])?\s*(\?\?=|\?=|:=|\+=|=\+|\.=|=\.|=)\s*(.*)$", re.S)
DIRECTIVE = re.compile(r"^(inherit|require|include|addtask|deltask|addhandler|EXPORT_FUNCTIONS)\s+(\S.*)$")
FUNCTION = re.compile(rf"^(?:python\s+|fakeroot\s+)*({NAME})?\s*\(\)\s*\{{$")
USE = re.compile(r"\$\{(@(?:[^{}]|\{[^{}]*\})*|[^{}]*)\}")


class Mistake(Exception):
    """Something that bitbake would not read, or not as it was meant."""


@dataclass
class Recipe:
    """What is set, the last value of each name; flags as NAME[FLAG]."""

    values: dict[str, str] = field(default_factory=dict)
    inherited: list[str] = field(default_factory=list)
    functions: dict[str, str] = field(default_factory=dict)

    def words(self, name: str) -> list[str]:
        return self.values.get(name, "").split()


def logical_lines(text: str) -> list[tuple[int, str]]:
    """With the number of their first line. A line that goes on is joined with its next."""
    lines: list[tuple[int, str]] = []
    begun: tuple[int, str] | None = None
    for number, line in enumerate(text.split("\n"), 1):
        if re.search(r"\\\s+$", line):
            raise Mistake(f"line {number}: something stands behind the backslash at its end")
        if begun and line.startswith("#"):
            raise Mistake(f"line {number}: a comment within a value")
        first, before = begun or (number, "")
        begun = (first, before + line[:-1]) if line.endswith("\\") else None
        if not begun:
            lines.append((first, before + line))
    if begun:
        raise Mistake(f"line {begun[0]}: the file ends within a value")
    return lines


def unquoted(number: int, value: str) -> str:
    quote = value[:1]
    if quote not in ('"', "'") or len(value) < 2 or value[-1] != quote:
        raise Mistake(f"line {number}: the value is not within quotes")
    inner = value[1:-1]
    if re.search(rf"(?<!\\){quote}", inner):
        raise Mistake(f"line {number}: a quote within the value")
    return inner


def parse(text: str) -> Recipe:
    recipe = Recipe()
    function: tuple[int, str] | None = None
    for number, line in logical_lines(text):
        if function:
            if line == "}":
                function = None
            else:
                recipe.functions[function[1]] += line + "\n"
            continue
        if not line.strip() or line.startswith("#"):
            continue
        if match := FUNCTION.match(line):
            function = (number, match[1] or "__anonymous")
            recipe.functions[function[1]] = ""
        elif match := DIRECTIVE.match(line):
            if match[1] == "inherit":
                recipe.inherited += match[2].split()
        elif match := ASSIGNMENT.match(line):
            assign(recipe, match, unquoted(number, match[4]))
        else:
            raise Mistake(f"line {number} is no assignment, directive, function or comment: {line}")
    if function:
        raise Mistake(f"line {function[0]}: the function {function[1]} does not end")
    return recipe


def assign(recipe: Recipe, match: re.Match[str], value: str) -> None:
    name = match[1] + (f"[{match[2]}]" if match[2] else "")
    before = recipe.values.get(name, "")
    joined = {
        "+=": f"{before} {value}",
        ".=": before + value,
        "=+": f"{value} {before}",
        "=.": value + before,
        "?=": before or value,
        "??=": before or value,
    }
    recipe.values[name] = joined.get(match[3], value)


def read(path: Path) -> Recipe:
    try:
        return parse(path.read_text(encoding="utf-8"))
    except Mistake as mistake:
        raise Mistake(f"{path.name}, {mistake}") from None


def uses(recipe: Recipe) -> set[str]:
    """The names of all variables that are used. Expressions in Python have to compile, and name theirs by getVar."""
    used: set[str] = set()
    for text in [*recipe.values, *recipe.values.values()]:
        for match in USE.finditer(text):
            inner = match[1]
            if inner.startswith("@"):
                compile(inner[1:], "expression", "eval")
                used |= set(re.findall(r"""getVar\(['"](\w+)['"]\)""", inner))
            else:
                used.add(inner)
        if USE.sub("", text).count("${"):
            raise Mistake(f"a ${{ does not end in: {text}")
    return used


def expanded(recipe: Recipe, text: str, known: dict[str, str]) -> str:
    return USE.sub(lambda match: known.get(match[1]) or recipe.values[match[1]], text)
