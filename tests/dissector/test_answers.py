"""Answers and the frames that they answer, repetitions, and the time between them."""

from __future__ import annotations

import unittest

import dissection
from dissection import Block, Tree, box, head

REQUEST = "9F 02 22 97 00 00 B5 9F 03"
ACK_22 = "9F 06 22 22 9F 03"
NACK_22 = "9F 15 22 22 9F 03"
VEHICLE = "9F 02 60 05 02 21 04 16 54 9F 03"
OTHER_VEHICLE = "9F 02 60 05 01 41 00 25 9F 03"
BAD_VEHICLE = "9F 02 60 05 02 21 04 16 55 9F 03"
ACK_60 = "9F 06 60 60 9F 03"


def links(tree: Tree) -> dict[str, str]:
    names = ("answer_in", "answer_to", "response_time", "retransmission_of")
    return {name: value for name, value in tree.fields if name in names}


def marks(tree: Tree) -> set[str]:
    return tree.experts & {"retransmission", "unanswered"}


def found(*blocks: Block) -> list[tuple[dict[str, str], set[str]]]:
    return [(links(tree), marks(tree)) for tree in dissection.trees(blocks)]


class Answers(unittest.TestCase):
    maxDiff = None

    def test_an_answer_of_the_box_leads_to_its_frame(self) -> None:
        self.assertEqual(
            found(head(REQUEST, 100), box(ACK_22, 103.2)),
            [({"answer_in": "2"}, set()), ({"answer_to": "1", "response_time": "0.003200000"}, set())],
        )

    def test_an_answer_of_the_head_unit_leads_to_its_frame(self) -> None:
        self.assertEqual(
            found(box(VEHICLE, 100), head(ACK_60, 1350.001)),
            [({"answer_in": "2"}, set()), ({"answer_to": "1", "response_time": "1.250001000"}, set())],
        )

    def test_the_time_counts_from_the_frames_last_byte(self) -> None:
        blocks = [head("9F 02 22 97", 100), head("00 00 B5 9F 03", 140), box("9F 06", 141), box("22 22 9F 03", 145)]
        times = [tree.one("response_time") for tree in dissection.trees(blocks)]
        self.assertEqual(times, [None, None, None, "0.005000000"])

    def test_the_info_column_tells_the_time(self) -> None:
        blocks = [head(REQUEST, 100), box(ACK_22, 103.2), head("9F 15 9F 03"), box("9F 15 50 50 9F 03")]
        self.assertEqual(
            dissection.columns(blocks), ["-> player.requestNormal", "ACK 22 (3.2 ms)", "NACK", "NACK 50"]
        )

    def test_a_nack_of_the_box_is_an_answer(self) -> None:
        trees = dissection.trees([head(REQUEST), box(NACK_22)])
        self.assertEqual((trees[0].one("answer_in"), trees[1].one("answer")), ("2", "0x15"))

    def test_a_nack_of_the_head_unit_is_none(self) -> None:
        self.assertEqual(
            found(box(VEHICLE, 100), head("9F 15 60 60 9F 03", 105), head(ACK_60, 110)),
            [({"answer_in": "3"}, set()), ({}, set()), ({"answer_to": "1", "response_time": "0.010000000"}, set())],
        )

    def test_an_answer_with_another_id_answers_nothing(self) -> None:
        self.assertEqual(found(head(REQUEST), box(ACK_60)), [({}, {"unanswered"}), ({}, set())])

    def test_an_answer_of_the_same_side_answers_nothing(self) -> None:
        self.assertEqual(found(head(REQUEST), head(ACK_22)), [({}, {"unanswered"}), ({}, set())])

    def test_an_answer_with_a_wrong_check_byte_answers_nothing(self) -> None:
        self.assertEqual(found(head(REQUEST), box("9F 06 22 23 9F 03")), [({}, {"unanswered"}), ({}, set())])

    def test_an_id_9f_of_the_box_counts_only_when_it_is_doubled(self) -> None:
        command = "9F 02 9F 9F 96 00 02 01 0A 9F 03"
        self.assertEqual(
            [links(tree) for tree in dissection.trees([head(command), box("9F 06 9F 9F 9F 03")])], [{}, {}]
        )
        self.assertEqual(
            [links(tree) for tree in dissection.trees([head(command, 1), box("9F 06 9F 9F 9F 9F 9F 03", 2)])],
            [{"answer_in": "2"}, {"answer_to": "1", "response_time": "0.001000000"}],
        )

    def test_a_second_answer_answers_nothing(self) -> None:
        self.assertEqual(found(head(REQUEST), box(ACK_22), box(ACK_22))[2], ({}, set()))

    def test_a_frame_with_a_wrong_check_byte_waits_for_no_answer(self) -> None:
        self.assertEqual(found(box(BAD_VEHICLE), head(ACK_60)), [({}, set()), ({}, set())])

    def test_an_answer_goes_to_the_last_frame_of_an_id(self) -> None:
        self.assertEqual(
            found(box(VEHICLE, 100), box(OTHER_VEHICLE, 120), head(ACK_60, 130)),
            [
                ({}, {"unanswered"}),
                ({"answer_in": "3"}, set()),
                ({"answer_to": "2", "response_time": "0.010000000"}, set()),
            ],
        )

    def test_repetitions_are_marked_and_answered_together(self) -> None:
        self.assertEqual(
            found(head(REQUEST, 0), head(REQUEST, 300), head(REQUEST, 600), box(ACK_22, 604)),
            [
                ({"answer_in": "4"}, set()),
                ({"retransmission_of": "1", "answer_in": "4"}, {"retransmission"}),
                ({"retransmission_of": "1", "answer_in": "4"}, {"retransmission"}),
                ({"answer_to": "3", "response_time": "0.004000000"}, set()),
            ],
        )

    def test_repetitions_without_an_answer_are_marked_as_such(self) -> None:
        self.assertEqual(
            found(box(VEHICLE, 0), box(VEHICLE, 300)),
            [({}, {"unanswered"}), ({"retransmission_of": "1"}, {"retransmission", "unanswered"})],
        )

    def test_the_same_bytes_after_an_answer_are_a_frame_of_their_own(self) -> None:
        marked = [marks(tree) for tree in dissection.trees([head(REQUEST), box(ACK_22), head(REQUEST), box(ACK_22)])]
        self.assertEqual(marked, [set(), set(), set(), set()])

    def test_the_same_bytes_later_than_a_second_are_a_frame_of_their_own(self) -> None:
        blocks = [head(REQUEST, 0), head(REQUEST, 1000), head(REQUEST, 2000.001)]
        marked = ["retransmission" in tree.experts for tree in dissection.trees(blocks)]
        self.assertEqual(marked, [False, True, False])

    def test_the_time_for_repetitions_is_a_preference(self) -> None:
        blocks = [head(REQUEST, 0), head(REQUEST, 300), head(REQUEST, 700)]
        trees = dissection.trees(blocks, "-o", "canbus.repeat_within:350")
        self.assertEqual(["retransmission" in tree.experts for tree in trees], [False, True, False])

    def test_the_same_bytes_of_the_other_side_are_no_repetition(self) -> None:
        check = "9F 02 40 01 00 00 01 40 9F 03"
        self.assertEqual([marks(tree) for tree in dissection.trees([box(check), head(check)], "-n")], [set(), set()])

    def test_both_sides_may_use_an_id_at_once(self) -> None:
        ready = "9F 02 40 01 00 00 01 40 9F 03"
        ack = "9F 06 40 40 9F 03"
        self.assertEqual(
            [links(tree) for tree in dissection.trees([box(ready, 0), head(ready, 1), head(ack, 2), box(ack, 5)])],
            [
                {"answer_in": "3"},
                {"answer_in": "4"},
                {"answer_to": "1", "response_time": "0.002000000"},
                {"answer_to": "2", "response_time": "0.004000000"},
            ],
        )

    def test_the_first_pass_knows_the_frame_of_an_answer(self) -> None:
        [frame, ack] = dissection.trees([head(REQUEST, 0), box(ACK_22, 1)], "-n")
        self.assertEqual(links(frame), {})
        self.assertEqual(links(ack), {"answer_to": "1", "response_time": "0.001000000"})


if __name__ == "__main__":
    dissection.main()
