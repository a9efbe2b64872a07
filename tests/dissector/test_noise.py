"""Any bytes whatever: no Lua error, nothing malformed, no byte lost. From seeds, so that a run repeats."""

from __future__ import annotations

import random
import tempfile
import unittest
from pathlib import Path

import dissection
from dissection import Block, Tree

BLOCKS = 2000
MARKS = "9F 9F 9F 02 03 06 15".split()
CATEGORIES = "01 02 03 04 05 06 07 11 21 91 92 93 94 95 96 97 98 99".split()


def any_byte(source: random.Random) -> str:
    return f"{source.randrange(256):02X}"


def noise(source: random.Random) -> str:
    return " ".join(any_byte(source) for _ in range(source.randrange(1, 60)))


def marks(source: random.Random) -> str:
    """Mostly bytes that mean something to the reader."""
    return " ".join(
        source.choice(MARKS) if source.random() < 0.7 else any_byte(source) for _ in range(source.randrange(1, 40))
    )


def good_frame(source: random.Random) -> str:
    """A whole frame with a right check byte: the payload gets as far as the items."""
    size = source.randrange(0, 50)
    words = [any_byte(source), source.choice(CATEGORIES), f"{source.randrange(7):02X}"]
    words += [any_byte(source) if source.random() < 0.8 else "00" for _ in range(size)]
    check = 0
    for word in words:
        check ^= int(word, 16)
    escaped = [f"{word} 9F" if word == "9F" else word for word in [*words, f"{check:02X}"]]
    return " ".join(["9F 02", *escaped, "9F 03"])


def damaged_frame(source: random.Random) -> str:
    words = good_frame(source).split()
    words[source.randrange(len(words))] = any_byte(source)
    return " ".join(words[: source.randrange(1, len(words) + 1)])


def random_blocks(seed: int) -> list[Block]:
    source = random.Random(seed)
    kinds = (noise, marks, good_frame, damaged_frame)
    return [Block(source.choice("IO"), source.choice(kinds)(source)) for _ in range(BLOCKS)]


def direction_of(block: Block) -> str:
    return {"I": "1", "O": "0"}[block.direction]


class Noise(unittest.TestCase):
    def check(self, seed: int, *arguments: str) -> list[list[Tree]]:
        """read_packets() itself fails on a Lua error and on what is malformed."""
        blocks = random_blocks(seed)
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            packets = dissection.read_packets(folder, dissection.write_capture(folder, blocks), *arguments)
        self.assertEqual(len(packets), BLOCKS)
        for block, packet in zip(blocks, packets):
            self.assertTrue(packet, f"nothing is shown of {block.bytes}")
            self.assertEqual({tree.one("direction") for tree in packet}, {direction_of(block)})
        return packets

    def test_random_blocks_in_one_pass(self) -> None:
        self.check(1)

    def test_random_blocks_in_two_passes(self) -> None:
        packets = self.check(2, "-2")
        experts = {expert for packet in packets for tree in packet for expert in tree.experts}
        self.assertLessEqual({"bad_check", "broken", "stray", "too_short", "unknown_command"}, experts)

    def test_good_frames_reach_all_items(self) -> None:
        fields = {key for packet in self.check(3) for tree in packet for key, _ in tree.fields}
        for item in ("climate.button.20", "gauges.valueTexts", "gauges.scale", "parking.sensor.4", "textScreen.texts"):
            self.assertIn(item, fields)

    def test_the_columns_alone_need_no_tree(self) -> None:
        blocks = random_blocks(4)
        self.assertEqual(len(dissection.columns(blocks)), BLOCKS)


if __name__ == "__main__":
    dissection.main()
