"""Runs tshark with the dissector over bytes that are written out in a test, and hands out what it found."""

from __future__ import annotations

import json
import os
import subprocess
import tempfile
import unittest
from collections.abc import Iterator, Sequence
from dataclasses import dataclass
from pathlib import Path
from typing import Any

DISSECTOR = Path(__file__).resolve().parents[2] / "tools" / "wireshark" / "canbus.lua"

Json = list[tuple[str, Any]]  # an object of tshark's: it repeats keys


@dataclass
class Block:
    """Some bytes that were read or written at once."""

    direction: str  # "I" from the box, "O" to the box
    bytes: str  # in hexadecimal
    ms: float | None = None  # since the beginning; by default 1 ms after the block before it


def box(hex_text: str, ms: float | None = None) -> Block:
    return Block("I", hex_text, ms)


def head(hex_text: str, ms: float | None = None) -> Block:
    return Block("O", hex_text, ms)


class Tree:
    """What is shown of one frame, or of bytes that are none."""

    def __init__(self, packet: int, seconds: float, layer: Json) -> None:
        self.packet = packet
        self.seconds = seconds  # since the first packet
        self.fields: list[tuple[str, str]] = []
        self.experts: set[str] = set()
        self._take(layer, inside_expert=False)

    def _take(self, layer: Json, inside_expert: bool) -> None:
        for key, value in layer:
            if isinstance(value, list):
                self._take(value, inside_expert or key == "_ws.expert")
            elif inside_expert:
                if key.startswith("canbus."):
                    self.experts.add(key.removeprefix("canbus."))
            else:
                self.fields.append((key.removeprefix("canbus."), plain(value)))

    def all(self, name: str) -> list[str]:
        return [value for key, value in self.fields if key == name]

    def one(self, name: str) -> str | None:
        values = self.all(name)
        assert len(values) < 2, f"{name} stands {len(values)} times in packet {self.packet}"
        return values[0] if values else None

    def under(self, prefix: str) -> dict[str, list[str]]:
        found: dict[str, list[str]] = {}
        for key, value in self.fields:
            if key.startswith(prefix):
                found.setdefault(key.removeprefix(prefix), []).append(value)
        return found


def plain(value: str) -> str:
    """Flags are 1 and 0 in one version of tshark and words in another."""
    return {"True": "1", "False": "0"}.get(value, value)


def capture_text(blocks: Sequence[Block]) -> str:
    lines: list[str] = []
    ms = 0.0
    for block in blocks:
        ms = block.ms if block.ms is not None else ms + 1
        us = round(ms * 1000)
        minutes, seconds = divmod(us // 1_000_000, 60)
        lines.append(f"{block.direction} 2026-11-05T12:{minutes:02}:{seconds:02}.{us % 1_000_000:06}Z")
        lines.append("000000 " + " ".join(byte_words(block.bytes)))
    return "\n".join(lines) + "\n"


def byte_words(hex_text: str) -> Iterator[str]:
    return (f"{byte:02x}" for byte in bytes.fromhex(hex_text))


def environment(folder: Path) -> dict[str, str]:
    """Without the user's own settings and plugins."""
    return os.environ | {
        "HOME": str(folder),
        "XDG_CONFIG_HOME": str(folder),
        "LC_ALL": "C.UTF-8",
        "TZ": "UTC",
    }


def run(folder: Path, *command: str) -> str:
    done = subprocess.run(
        command, env=environment(folder), stdin=subprocess.DEVNULL, capture_output=True, check=False, text=True
    )
    assert done.returncode == 0, f"{command[0]}: {done.returncode}: {done.stderr}"
    complaints = [line for line in done.stderr.splitlines() if line and not line.startswith("Running as user")]
    assert command[0] != "tshark" or not complaints, done.stderr
    return done.stdout


def tshark(folder: Path, recording: Path, *arguments: str) -> str:
    return run(folder, "tshark", "-X", f"lua_script:{DISSECTOR}", "-r", str(recording), *arguments)


def write_capture(folder: Path, blocks: Sequence[Block]) -> Path:
    text, recording = folder / "blocks.txt", folder / "blocks.pcapng"
    text.write_text(capture_text(blocks), encoding="ascii")
    run(folder, "text2pcap", "-q", "-D", "-t", "ISO", "-l", "147", str(text), str(recording))
    return recording


def trees_of(packet: int, layers: Json) -> list[Tree]:
    trees: list[Tree] = []
    seconds = float(dict(dict(layers)["frame"])["frame.time_relative"])
    for key, layer in layers:
        assert not key.startswith(("Lua Error", "_ws.malformed", "_ws.lua.error")), f"packet {packet}: {key}"
        if key == "canbus":
            trees.append(Tree(packet, seconds, layer))
    return trees


def layers_of(packet: Json) -> Json:
    layers: Json = dict(dict(packet)["_source"])["layers"]
    return layers


def read_packets(folder: Path, recording: Path, *arguments: str) -> list[list[Tree]]:
    """The trees of each packet."""
    text = tshark(folder, recording, "-T", "json", *arguments)
    packets: list[Json] = json.loads(text, object_pairs_hook=list)
    return [trees_of(number, layers_of(packet)) for number, packet in enumerate(packets, 1)]


def columns(blocks: Sequence[Block], *arguments: str) -> list[str]:
    """The info column of each packet."""
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        recording = write_capture(folder, blocks)
        return tshark(folder, recording, "-T", "fields", "-e", "_ws.col.Info", *arguments).splitlines()


def packets(blocks: Sequence[Block], *arguments: str) -> list[list[Tree]]:
    """The trees of each packet, in two passes unless told otherwise."""
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        return read_packets(folder, write_capture(folder, blocks), *(arguments or ("-2",)))


def trees(blocks: Sequence[Block], *arguments: str) -> list[Tree]:
    return [tree for packet in packets(blocks, *arguments) for tree in packet]


def main() -> None:
    unittest.main(verbosity=2)
