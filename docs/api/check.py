#!/usr/bin/env python3
"""What Doxygen does not ask of the reference: docs/api/check.py ROOT XML-FOLDER

Each public operation of what is installed names its thread, says what each of its arguments and its result is;
each installed header is in the reference, and each property of the QML module.
"""

from __future__ import annotations

import re
import sys
import xml.etree.ElementTree as ET
from collections.abc import Iterator
from pathlib import Path

OPERATIONS = ("function", "signal", "slot", "define")


def text_of(element: ET.Element | None) -> str:
    return " ".join("".join(element.itertext()).split()) if element is not None else ""


def titles(member: ET.Element) -> set[str]:
    return {text_of(section.find("title")) for section in member.iter("simplesect") if section.get("kind") == "par"}


def arguments(member: ET.Element) -> set[str]:
    tag = "defname" if member.get("kind") == "define" else "declname"
    return {name for param in member.findall("param") if (name := text_of(param.find(tag)))}


def result(member: ET.Element) -> str:
    """The type of the result; nothing for those that have none."""
    words = text_of(member.find("type")).replace("virtual", "").replace("static", "").replace("explicit", "").strip()
    return "" if words in ("", "void") else words


def gaps(member: ET.Element) -> Iterator[str]:
    if not (text_of(member.find("briefdescription")) or text_of(member.find("detaileddescription"))):
        yield "has no comment"
        return
    wanted = "Emitted on" if member.get("kind") == "signal" else "Thread"
    if wanted not in titles(member):
        is_signal = member.get("kind") == "signal"
        yield 'does not say where it is emitted: "@emitted{...}"' if is_signal else 'names no thread: "@thread{...}"'
    told = {text_of(name) for name in member.iter("parametername")}
    for name in sorted(arguments(member) - told):
        yield f"does not say what {name} is"
    says_result = any(section.get("kind") == "return" for section in member.iter("simplesect"))
    if member.get("kind") != "define" and result(member) and not says_result:
        yield "does not say what it returns"


def operations(xml: Path) -> Iterator[ET.Element]:
    for file in sorted(xml.glob("*.xml")):
        compound = ET.parse(file).getroot().find("compounddef")
        if compound is None or compound.get("kind") not in ("class", "struct", "file", "namespace"):
            continue
        for member in compound.iter("memberdef"):
            # A file repeats what is in its namespaces.
            if is_operation(member) and (compound.get("kind") != "file" or is_global(member)):
                yield member


def is_operation(member: ET.Element) -> bool:
    is_constant = member.get("kind") == "define" and member.find("param") is None
    return member.get("kind") in OPERATIONS and member.get("prot") == "public" and not is_constant


def is_global(member: ET.Element) -> bool:
    return "::" not in text_of(member.find("qualifiedname"))


def place(member: ET.Element) -> str:
    location = member.find("location")
    name = text_of(member.find("qualifiedname")) or text_of(member.find("name"))
    return f"{location.get('file')}:{location.get('line')}: {name}" if location is not None else name


def missing_headers(root: Path, xml: Path) -> Iterator[str]:
    listed = re.search(r"set\(CANBUS_PUBLIC_HEADERS\n(.*?)\)", (root / "src/CMakeLists.txt").read_text(), re.S)
    installed = {Path(name).name for name in listed[1].split()} if listed else set()
    installed |= {header.name for header in (root / "hostsdk/include").glob("*.h")}
    known = {text_of(name) for name in ET.parse(xml / "index.xml").getroot().findall("compound[@kind='file']/name")}
    if not installed & known:
        yield "src/CMakeLists.txt: no installed header is found there"
    for header in sorted(installed - known):
        yield f"{header} is installed, and not in INPUT of docs/api/Doxyfile"


def missing_properties(root: Path) -> Iterator[str]:
    page = (root / "docs/qml.md").read_text()
    types = (root / "qml/plugins.qmltypes").read_text()
    states = re.findall(r'Component \{\n\s+name: "canbus::qml::(\w+State)"(.*?)\n    \}', types, re.S)
    if not states:
        yield "qml/plugins.qmltypes: no state object is found there"
    for state, body in states:
        section = re.search(rf"### {state}\n(.*?)(?=\n##)", page, re.S)
        for name in re.findall(r'Property \{ name: "(\w+)"', body):
            if not section or f"`{name}`" not in section[1]:
                yield f"docs/qml.md: {state} has the property {name}, which is not told"


def main(root: Path, xml: Path) -> int:
    members = list(operations(xml))
    found = [f"{place(member)} {gap}" for member in members for gap in gaps(member)]
    found += [*missing_headers(root, xml), *missing_properties(root)]
    for line in found:
        print(line, file=sys.stderr)
    print(f"reference: {len(members)} operations, {len(found)} gaps")
    return 1 if found or not members else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("docs/api/check.py ROOT XML-FOLDER")
    sys.exit(main(Path(sys.argv[1]), Path(sys.argv[2])))
