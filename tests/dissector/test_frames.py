"""Frames in a stream of bytes: cut, merged, damaged, and what is none."""

from __future__ import annotations

import tempfile
import unittest
from collections.abc import Callable
from pathlib import Path

import dissection
from dissection import Block, Tree, box, head

VEHICLE = "9F 02 60 05 02 21 04 16 54 9F 03"
PARKING = "9F 02 68 06 02 10 20 9F 9F 40 01 02 04 08 00 00 00 00 00 00 00 00 31 BD 9F 03"
ACK = "9F 06 60 60 9F 03"
ACK_OF_9F = "9F 06 9F 9F 9F 9F 9F 03"
CHECK_9F = "9F 02 50 93 00 1B 01 46 9F 9F 9F 03"
ACCIDENTAL = {"unanswered", "retransmission"}


def cut(frame: str) -> list[tuple[str, str]]:
    """At every position."""
    words = frame.split()
    return [(" ".join(words[:i]), " ".join(words[i:])) for i in range(1, len(words))]


def content(tree: Tree) -> list[tuple[str, str]]:
    """Without what depends on other frames."""
    links = ("begins_in", "answer_in", "answer_to", "response_time", "retransmission_of")
    return [field for field in tree.fields if field[0] not in links]


def shown(tree: Tree) -> str:
    """The kind of a tree, and what tells it from others."""
    faults = sorted(tree.experts - ACCIDENTAL)
    what = tree.one("bytes") or tree.one("data") or f"{tree.one('answer')} {tree.one('id')}"
    return " ".join([what, *faults])


def shown_of(*blocks: Block) -> list[str]:
    return [shown(tree) for tree in dissection.trees(blocks)]


class Frames(unittest.TestCase):
    maxDiff = None

    def check_cuts(self, side: Callable[[str], Block], frame: str) -> None:
        [whole] = dissection.trees([side(frame)])
        blocks = [side(part) for parts in cut(frame) for part in parts]
        packets = dissection.packets(blocks)
        self.assertEqual(len(packets), len(blocks))
        for number in range(0, len(packets), 2):
            with self.subTest(first=blocks[number].bytes):
                [first], [second] = packets[number], packets[number + 1]
                self.assertEqual(first.one("continued_in"), str(number + 2))
                self.assertEqual(first.one("bytes"), ":".join(blocks[number].bytes.lower().split()))
                self.assertEqual(second.one("begins_in"), str(number + 1))
                self.assertEqual(content(second), content(whole))
                self.assertEqual((first.experts | second.experts) - ACCIDENTAL, set())

    def test_a_data_frame_is_put_together_wherever_it_is_cut(self) -> None:
        self.check_cuts(box, PARKING)

    def test_an_escaped_check_byte_is_put_together_wherever_it_is_cut(self) -> None:
        self.check_cuts(head, CHECK_9F)

    def test_an_answer_is_put_together_wherever_it_is_cut(self) -> None:
        self.check_cuts(head, ACK)
        self.check_cuts(box, ACK_OF_9F)

    def test_a_frame_of_single_bytes_is_shown_with_the_last(self) -> None:
        words = PARKING.split()
        packets = dissection.packets([box(word) for word in words])
        self.assertEqual([packet[0].one("continued_in") for packet in packets[:-1]], ["26"] * 25)
        self.assertEqual((packets[-1][0].one("begins_in"), packets[-1][0].one("parking.front.3")), ("1", "159"))

    def test_several_frames_in_a_block_are_shown_in_order(self) -> None:
        packets = dissection.packets([box(f"{ACK} {VEHICLE} {PARKING} {ACK_OF_9F}")])
        [[ack, vehicle, parking, ack_of_9f]] = packets
        self.assertEqual((ack.one("answer"), ack.one("id")), ("0x06", "0x60"))
        self.assertEqual(vehicle.one("vehicle.door.1"), "1")
        self.assertEqual(parking.one("parking.front.3"), "159")
        self.assertEqual(ack_of_9f.one("id"), "0x9f")

    def test_a_block_may_end_one_frame_and_begin_the_next(self) -> None:
        blocks = [box("9F 02 60 05 02"), box("21 04 16 54 9F 03 9F"), box("06 60 60 9F 03")]
        [[first], [vehicle, second], [ack]] = dissection.packets(blocks)
        self.assertEqual((first.one("continued_in"), vehicle.one("begins_in")), ("2", "1"))
        self.assertEqual((second.one("bytes"), second.one("continued_in")), ("9f", "3"))
        self.assertEqual((vehicle.one("vehicle.door.1"), ack.one("id"), ack.one("begins_in")), ("1", "0x60", "2"))

    def test_the_directions_do_not_mix(self) -> None:
        blocks = [box("9F 02 60 05 02"), head("9F 06"), box("21 04 16 54 9F 03"), head("68 68 9F 03")]
        [_, _, [vehicle], [ack]] = dissection.packets(blocks)
        self.assertEqual((vehicle.one("vehicle.door.1"), vehicle.one("direction")), ("1", "1"))
        self.assertEqual((ack.one("id"), ack.one("direction"), ack.one("begins_in")), ("0x68", "0", "2"))

    def test_a_wrong_check_byte_is_marked_and_the_items_are_left_out(self) -> None:
        [tree] = dissection.trees([box("9F 02 60 05 02 21 04 16 55 9F 03")])
        self.assertEqual(tree.experts, {"bad_check"})
        self.assertEqual((tree.one("checksum"), tree.one("checksum.status")), ("0x55", "0"))
        self.assertEqual((tree.one("data"), tree.under("vehicle.")), ("21:04:16", {}))

    def test_a_command_with_a_wrong_check_byte_is_not_named(self) -> None:
        [tree] = dissection.trees([head("9F 02 50 93 00 12 01 00 D1 9F 03")])
        self.assertEqual((tree.experts, tree.under("command.")), ({"bad_check"}, {}))

    def test_answers_are_read_by_position(self) -> None:
        cases = [
            ("an ACK", box("9F 06 60 60 9F 03"), "0x06 0x60"),
            ("a NACK", box("9F 15 50 50 9F 03"), "0x15 0x50"),
            ("a NACK without an id", head("9F 15 9F 03"), "0x15 None"),
            ("an id 9F of the head unit", head("9F 06 9F 9F 9F 03"), "0x06 0x9f"),
            ("an id 9F of the box", box("9F 06 9F 9F 9F 9F 9F 03"), "0x06 0x9f"),
            ("an id 9F of the box in the head unit's way", box("9F 06 9F 9F 9F 03"), "0x06 0x9f unreadable_answer"),
            ("an id that is a mark", box("9F 06 03 03 9F 03"), "0x06 0x03"),
            ("two ids", box("9F 06 60 61 9F 03"), "0x06 0x60 bad_check"),
        ]
        self.assertEqual(shown_of(*(block for _, block, _ in cases)), [expected for _, _, expected in cases])

    def test_what_breaks_a_frame_off(self) -> None:
        cases = [
            ("9F before another byte", box(f"9F 02 60 9F 41 {ACK}"), ["9f:02:60:9f:41 broken", "0x06 0x60"]),
            ("a new frame", box(f"9F 02 60 05 {VEHICLE}"), ["9f:02:60:05 broken", "21:04:16"]),
            ("an answer inside", box(f"9F 02 60 05 {ACK}"), ["9f:02:60:05 broken", "0x06 0x60"]),
            ("three bytes", box("9F 02 60 05 65 9F 03"), ["9f:02:60:05:65:9f:03 broken"]),
            ("no byte", box("9F 02 9F 03"), ["9f:02:9f:03 broken"]),
            ("an id that stands once", box("9F 06 60 9F 03"), ["9f:06:60:9f:03 broken"]),
            ("a third id", box("9F 06 60 60 60 9F 03"), ["9f:06:60:60 broken", "60:9f:03 stray"]),
        ]
        for what, block, expected in cases:
            with self.subTest(what):
                self.assertEqual(shown_of(block), expected)

    def test_a_frame_without_an_end_is_given_up(self) -> None:
        [broken, after, ack] = dissection.trees([box("9F 02" + " 41" * 2100 + ACK)])
        self.assertEqual((broken.experts, after.experts, ack.one("id")), ({"broken"}, {"stray"}, "0x60"))

    def test_a_frame_may_have_2048_bytes_and_no_more(self) -> None:
        longest, longer = [
            dissection.trees([box("9F 02 50 03 02" + " 41" * count + f" {check} 9F 03")])
            for count, check in ((2040, "51"), (2041, "10"))
        ]
        self.assertEqual((longest[0].one("checksum.status"), longest[0].one("climate.mainTemp")), ("1", "16705"))
        self.assertIn("broken", longer[0].experts)

    def test_bytes_outside_frames_are_marked(self) -> None:
        self.assertEqual(shown_of(box(f"55 66 {VEHICLE} 77")), ["55:66 stray", "21:04:16", "77 stray"])
        self.assertEqual(shown_of(box("03 9F 55"), box("9F 03")), ["03:9f:55 stray", "9f:03 stray"])

    def test_a_lone_escape_at_a_blocks_end_may_turn_out_to_be_none(self) -> None:
        [[outside, part], [late]] = dissection.packets([box("55 9F"), box("66")])
        self.assertEqual((shown(outside), shown(late)), ("55 stray", "9f:66 stray"))
        self.assertEqual((part.one("continued_in"), late.one("begins_in")), ("2", "1"))

    def test_a_frame_at_the_recordings_end_is_incomplete(self) -> None:
        self.assertEqual(shown_of(box("9F 02 60 05 02 21")), ["9f:02:60:05:02:21 incomplete"])
        self.assertEqual(shown_of(box("55 9F")), ["55 stray", "9f incomplete"])

    def test_the_first_pass_does_not_say_that_a_frame_is_incomplete(self) -> None:
        [part] = dissection.trees([box("9F 02 60 05 02 21")], "-n")
        self.assertEqual((part.one("bytes"), part.experts), ("9f:02:60:05:02:21", set()))

    def test_an_end_that_the_head_unit_sees_too_early_is_marked(self) -> None:
        early = "9F 02 68 06 00 41 9F 9F 03 42 00 F1 9F 03"
        self.assertEqual(shown_of(box(early)), ["41:9f:03:42:00 early_end"])
        # The box reads it properly, and a check byte 9F does no harm.
        self.assertEqual(shown_of(head("9F 02 78 91 00 01 9F 9F 03 74 9F 03")), ["01:9f:03"])
        self.assertEqual(shown_of(box("9F 02 50 93 00 1B 01 46 9F 9F 9F 03")), ["1b:01:46 unknown_category"])

    def test_the_loop_back_answer_is_told(self) -> None:
        block = head("37 31 36 31 35 31 34 31 33 31 32 31")
        self.assertEqual(shown_of(block), ["37:31:36:31:35:31:34:31:33:31:32:31 stray"])
        self.assertEqual(dissection.columns([block]), ["loop-back answer"])

    def test_one_pass_and_two_passes_find_the_same(self) -> None:
        blocks = [box("55 9F 02 60 05 02"), box("21 04 16 54 9F 03 9F"), box(f"06 60 60 9F 03 {PARKING}")]
        known_later = ("continued_in", "answer_in")
        for one, two in zip(dissection.trees(blocks, "-n"), dissection.trees(blocks), strict=True):
            self.assertEqual(one.fields, [field for field in two.fields if field[0] not in known_later])
            self.assertEqual(one.experts, two.experts - {"unanswered"})

    def test_a_recording_without_directions_is_read_by_the_numbers(self) -> None:
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            recording = dissection.write_capture(folder, [box(VEHICLE), head("9F 02 22 97 00 00 B5 9F 03"), head(ACK)])
            plain = folder / "plain.pcap"
            dissection.run(folder, "editcap", "-F", "pcap", str(recording), str(plain))
            [[vehicle], [request], [ack]] = dissection.read_packets(folder, plain)
        self.assertEqual((vehicle.one("direction"), vehicle.one("vehicle.door.1")), ("2", "1"))
        self.assertEqual(request.one("command.name"), "player.requestNormal")
        self.assertEqual((ack.one("id"), ack.one("answer_to")), ("0x60", None))

    def test_packets_that_lost_their_bytes_are_read_as_far_as_they_go(self) -> None:
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            recording = dissection.write_capture(folder, [box("41 42 43"), box(VEHICLE), box(f"{ACK} 41 42 43")])
            chopped = folder / "chopped.pcapng"
            dissection.run(folder, "editcap", "-C", "-3", str(recording), str(chopped))
            packets = dissection.read_packets(folder, chopped, "-2")
        self.assertEqual(
            [[shown(tree) for tree in packet] for packet in packets],
            [[], ["9f:02:60:05:02:21:04:16"], ["9f:02:60:05:02:21:04:16 broken", "0x06 0x60"]],
        )

    def test_the_columns_name_the_sides(self) -> None:
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            recording = dissection.write_capture(folder, [box(VEHICLE), head(ACK)])
            fields = ("-e", "_ws.col.Source", "-e", "_ws.col.Destination", "-e", "_ws.col.Protocol")
            text = dissection.tshark(folder, recording, "-T", "fields", *fields)
        self.assertEqual(text.splitlines(), ["box\thead unit\tCANBUS", "head unit\tbox\tCANBUS"])


if __name__ == "__main__":
    dissection.main()
