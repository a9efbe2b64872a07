"""Recordings of whole runs: every frame that the library has read is dissected, and none is malformed.

The recordings are those of tests/recordings, and one of a full round of the built-in drive that is made here.
"""

from __future__ import annotations

import json
import subprocess
import tempfile
import unittest
from collections import Counter
from pathlib import Path

import dissection
from dissection import Tree
from test_library import RECORDINGS, read_by_dissector, record, runnable

FROM_BOX = "1"
ANSWERS = {"0x06": "receivedAcks", "0x15": "receivedNacks"}
FIGURES = ("receivedFrames", "badChecks", *ANSWERS.values())
ACCIDENTAL = {"unanswered", "retransmission"}  # a sound line shows them too
DAMAGE = {"bad_check", "stray", "broken", "early_end"}
ROUND_S = 14  # of the drive's 60 s at the speed of record(), with the time that the link takes to come up


def figure_of(tree: Tree) -> str | None:
    """The library's figure that counts what the tree shows, if it is a whole frame of the box's."""
    if tree.one("direction") != FROM_BOX or tree.one("checksum.status") is None:
        return None
    if "bad_check" in tree.experts:
        return "badChecks"
    return ANSWERS.get(tree.one("answer") or "", "receivedFrames")


def counted_by_library(recording: Path) -> dict[str, int]:
    words = runnable("canbus-monitor", "--read", str(recording), "--json", "--stats")
    done = subprocess.run(words, stdin=subprocess.DEVNULL, capture_output=True, check=False, text=True)
    assert done.returncode == 0, f"{words}: {done.stderr}"
    reports = [json.loads(line) for line in done.stdout.splitlines()]
    last = [report["stats"] for report in reports if "stats" in report][-1]
    return {name: last[name] for name in FIGURES}


class Recordings(unittest.TestCase):
    maxDiff = None

    def check(self, recording: Path, expected_experts: set[str]) -> Counter[str]:
        """@return how many there are of each kind of frame; reading asserts that none is malformed"""
        trees = read_by_dissector(recording)
        found = Counter(figure for figure in map(figure_of, trees) if figure)
        self.assertEqual({name: found[name] for name in FIGURES}, counted_by_library(recording))
        self.assertEqual(set().union(*(tree.experts for tree in trees)) - expected_experts, set())
        return found

    def test_the_recordings_of_the_tests(self) -> None:
        recordings = sorted(RECORDINGS.glob("*.pcapng"))
        self.assertTrue(recordings, f"{RECORDINGS} holds none")
        for recording in recordings:
            with self.subTest(recording.name):
                self.check(recording, ACCIDENTAL | DAMAGE)

    def test_a_round_of_the_drive(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            recording, _ = record(Path(folder), ROUND_S)
            found = self.check(recording, ACCIDENTAL)
        self.assertGreater(found["receivedFrames"], 300)


if __name__ == "__main__":
    dissection.main()
