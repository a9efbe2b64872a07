#!/usr/bin/env python3
"""The dissector knows each command and each item that the simulated box knows, by the same name: those of the
scenarios' schema, which the box writes."""

from __future__ import annotations

import json
import re
import subprocess
import unittest
from collections.abc import Iterator
from pathlib import Path
from typing import Any

import dissection

SCHEMA = Path(__file__).resolve().parents[2] / "scenarios" / "scenario.schema.json"
OBJECTS = ("version", "screens", "climate", "gauges", "vehicle", "parking", "textScreen")


def command_lists(schema: Any) -> Iterator[list[str]]:
    """The lists of names that stand for "command"."""
    if isinstance(schema, dict):
        command = schema.get("command")
        if isinstance(command, dict) and "enum" in command:
            yield command["enum"]
        schema = list(schema.values())
    if isinstance(schema, list):
        for part in schema:
            yield from command_lists(part)


def dissector_items() -> set[str]:
    """The fields of what the box reports, an entry of a list by the list's name."""
    command = ["tshark", "-G", "fields", "-X", f"lua_script:{dissection.DISSECTOR}"]
    listed = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    names = re.findall(rf"^F\t[^\t]*\tcanbus\.((?:{'|'.join(OBJECTS)})\.\w+)", listed, re.MULTILINE)
    return set(names)


class Names(unittest.TestCase):
    maxDiff = None

    def setUp(self) -> None:
        self.schema = json.loads(SCHEMA.read_text())

    def test_each_item_is_known_to_both(self) -> None:
        items = {name for name in self.schema["definitions"] if name.startswith(tuple(f"{each}." for each in OBJECTS))}
        self.assertIn("climate.mainTemp", items)
        self.assertEqual(dissector_items(), items)

    def test_each_command_has_its_row(self) -> None:
        commands = set().union(*command_lists(self.schema["definitions"])) - {"unknown"}
        self.assertIn("climate.acBtn", commands)
        dissector = dissection.DISSECTOR.read_text()
        # Settings are one row: whose they are, the id tells.
        rows = {"settings" if name.endswith(".settings") else name for name in commands}
        self.assertEqual({name for name in rows if f'"{name}"' not in dissector}, set())


if __name__ == "__main__":
    dissection.main()
