#!/usr/bin/env python3
"""undescribed.py PROGRAM FOLDER TYPES.XML: the types that headers declare and a description does not have.

PROGRAM has debug information of all types that it has seen, used or not; those count that a header in FOLDER itself
defines, as the debug information names that folder. Prints each that TYPES.XML lacks, or knows the name of alone.
"""

from __future__ import annotations

import re
import subprocess
import sys
import xml.etree.ElementTree as xml
from dataclasses import dataclass
from typing import Iterator

TYPES = {"class_type", "structure_type", "union_type", "enumeration_type"}
ENTRY = re.compile(r" *<(\w+)><(\w+)>: Abbrev Number: \d+ \(DW_TAG_(\w+)\)")
ATTRIBUTE = re.compile(
    r" *<\w+> +DW_AT_(name|decl_file|declaration|specification) *: \(\w+\) *(?:\(.*?\): )?(.*)")
FOLDER_LINE = re.compile(r"  (\d+)\t.*\): (.*)")
FILE_LINE = re.compile(r"  (\d+)\t\(udata\)\t(\d+)\t")
# Q_OBJECT puts it into each class that has it.
NOT_OURS = "QPrivateSignal"


@dataclass
class Entry:
    """What is told of one type, function, namespace or variable."""

    depth: int
    offset: str
    kind: str
    name: str = ""
    file: str = ""
    is_declaration: bool = False
    declared_by: str = ""


def dump(program: str, section: str) -> list[str]:
    command = ["readelf", "--wide", f"--debug-dump={section}", program]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()


def files_in(program: str, folder: str) -> set[str]:
    """The numbers that the program's one source has for the files of the folder."""
    lines = dump(program, "rawline")
    folders = {found[1] for found in map(FOLDER_LINE.match, lines) if found and found[2] == folder}
    return {found[1] for found in map(FILE_LINE.match, lines) if found and found[2] in folders}


def entries(program: str) -> Iterator[Entry]:
    entry = None
    for line in dump(program, "info"):
        if found := ENTRY.match(line):
            if entry:
                yield entry
            entry = Entry(int(found[1]), found[2], found[3])
        elif entry and (found := ATTRIBUTE.match(line)):
            take_attribute(entry, found[1], found[2])
    if entry:
        yield entry


def take_attribute(entry: Entry, attribute: str, value: str) -> None:
    if attribute == "name":
        entry.name = value.strip()
    elif attribute == "decl_file":
        entry.file = value.strip()
    elif attribute == "declaration":
        entry.is_declaration = True
    else:
        entry.declared_by = value.strip().removeprefix("<0x").removesuffix(">")


def declared(program: str, folder: str) -> list[str]:
    """The types with a body and a name, scopes and all, that stand in no function and are no templates."""
    files, found = files_in(program, folder), set()
    scopes: list[str | None] = []
    names: dict[str, str] = {}
    for entry in entries(program):
        del scopes[entry.depth:]
        scopes += [None] * (entry.depth - len(scopes))
        name = names.get(entry.declared_by) or qualified(scopes, entry)
        scopes.append(name)
        if entry.kind in TYPES and name:
            names[entry.offset] = name
            if entry.file in files and not entry.is_declaration and entry.name != NOT_OURS:
                found.add(name)
    return sorted(found)


def qualified(scopes: list[str | None], entry: Entry) -> str | None:
    """Nothing for what is no scope of types, or stands in something that is none."""
    if entry.kind not in TYPES | {"namespace"} or not entry.name or "<" in entry.name:
        return None
    if entry.depth == 1:
        return entry.name
    return f"{scopes[-1]}::{entry.name}" if scopes[-1] else None


def described(path: str) -> set[str]:
    found = set()

    def walk(node: xml.Element, scope: str) -> None:
        name = node.get("name", "")
        if node.tag in ("class-decl", "union-decl", "enum-decl") and node.get("is-declaration-only") != "yes":
            found.add(scope + name)
        inner = f"{scope}{name}::" if node.tag in ("namespace-decl", "class-decl", "union-decl") else scope
        for child in node:
            walk(child, inner)

    walk(xml.parse(path).getroot(), "")
    return found


def main() -> None:
    program, folder, path = sys.argv[1:]
    types = declared(program, folder)
    if not types:
        sys.exit(f"undescribed.py: no type of {folder} in {program}")
    known = described(path)
    print("".join(f"{name}\n" for name in types if name not in known), end="")


if __name__ == "__main__":
    main()
