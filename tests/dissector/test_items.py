"""Every category and sub-type, item by item."""

from __future__ import annotations

import tempfile
import unittest
from pathlib import Path

import dissection
from dissection import Tree, box

BUTTONS_OF_EXAMPLE = "1 0 1 0 0 0 1 1 1 1 0 0 0 0 0 0 0 0 0 1"
BUTTONS_OF_OTHER = "3 1 1 3 0 2 3 0 1 1 0 1 2 3 0 3 0 2 0 1"


def entries(name: str, values: str) -> dict[str, list[str]]:
    return {f"{name}.{i}": [value] for i, value in enumerate(values.split(), 1)}


def values(**items: str | int) -> dict[str, list[str]]:
    return {name: [str(value)] for name, value in items.items()}


# What each row shows, its frame, the object, and all items of it.
FRAMES: list[tuple[str, str, str, dict[str, list[str]]]] = [
    ("ready", "9F 02 41 01 00 00 01 41 9F 03", "version.", values(ready=1)),
    ("not ready", "9F 02 41 01 00 00 00 40 9F 03", "version.", values(ready=0)),
    ("readiness without a meaning", "9F 02 41 01 00 00 07 47 9F 03", "version.", values(ready=7)),
    ("no readiness reads as not ready", "9F 02 41 01 00 40 9F 03", "version.", values(ready=0)),
    ("screens 0, 2, 4", "9F 02 48 02 00 15 5F 9F 03", "screens.", entries("supported", "1 0 1 0 1")),
    ("no screens byte reads as none", "9F 02 48 02 00 4A 9F 03", "screens.", entries("supported", "0 0 0 0 0")),
    (
        "climate's title ends at the zero",
        "9F 02 50 03 00 07 4B 6C 69 6D 61 00 58 4E 9F 03",
        "climate.",
        values(type=7, title="Klima"),
    ),
    (
        "bytes that are no UTF-8 are dropped from a title",
        "9F 02 50 03 00 FF C3 84 FF 42 EF BF BD BB 9F 03",
        "climate.",
        values(type=255, title="ÄB"),
    ),
    ("an empty title", "9F 02 50 03 00 00 00 53 9F 03", "climate.", values(type=0, title="")),
    (
        "climate labels, the second empty, the last not closed",
        "9F 02 52 03 01 4F 6E 00 00 C3 96 00 4C 6F 07 9F 03",
        "climate.",
        {"labels": ["On", "", "Ö"]},
    ),
    (
        "the climate state",
        "9F 02 50 03 02 00 D7 00 CD 54 40 20 01 80 55 34 00 01 14 16 9C 9F 03",
        "climate.",
        values(mainTemp=215, secondTemp=205, mainUnit=1, secondUnit=1)
        | values(leftHeatedSeat=2, rightHeatedSeat=0, leftCooledSeat=0, rightCooledSeat=1)
        | values(fanDirectValue=128, fanSpeedStatus=1, ventPosition=3, fanDirect=1)
        | values(systemOn=1, driverSeat=0, manualTemp=22)
        | entries("button", BUTTONS_OF_EXAMPLE),
    ),
    (
        "4-bit states above 8 read as 0",
        "9F 02 50 03 02 FF FE 01 00 8D 72 98 F9 FF B1 84 6C C9 24 FF 7B 9F 03",
        "climate.",
        values(mainTemp=65534, secondTemp=256, mainUnit=2, secondUnit=0)
        | values(leftHeatedSeat=0, rightHeatedSeat=8, leftCooledSeat=0, rightCooledSeat=0)
        | values(fanDirectValue=255, fanSpeedStatus=2, ventPosition=8, fanDirect=1)
        | values(systemOn=0, driverSeat=1, manualTemp=255)
        | entries("button", BUTTONS_OF_OTHER),
    ),
    (
        "bytes behind the climate state's end are ignored",
        "9F 02 50 03 02 00 D7 00 CD 54 40 20 01 80 55 34 00 01 14 16 AA BB 8D 9F 03",
        "climate.",
        values(mainTemp=215, secondTemp=205, mainUnit=1, secondUnit=1)
        | values(leftHeatedSeat=2, rightHeatedSeat=0, leftCooledSeat=0, rightCooledSeat=1)
        | values(fanDirectValue=128, fanSpeedStatus=1, ventPosition=3, fanDirect=1)
        | values(systemOn=1, driverSeat=0, manualTemp=22)
        | entries("button", BUTTONS_OF_EXAMPLE),
    ),
    (
        "gauge types and title",
        "9F 02 58 04 00 F5 52 61 00 9A 9F 03",
        "gauges.",
        entries("type", "1 0 1 0") | values(title="Ra"),
    ),
    ("gauge labels", "9F 02 58 04 01 41 00 42 00 5E 9F 03", "gauges.", {"labels": ["A", "B"]}),
    (
        "a scale that ends within an entry",
        "9F 02 58 04 02 30 00 31 30 00 32 30 30 41 1C 9F 03",
        "gauges.",
        {"scale": ["0", "10", "200"]},
    ),
    (
        "centre texts behind a full scale, which is not cleaned",
        "9F 02 58 04 02 30 00 31 00 00 32 00 00 33 00 00 34 00 00 35 00 00 36 00 00 37 00 00 38 00 00 39 FF 00"
        " 31 30 30 6B 6D 00 68 00 FF 9F 03",
        "gauges.",
        {"scale": ["0", "1", "2", "3", "4", "5", "6", "7", "8", "9\ufffd", "100"], "centerTexts": ["km", "h"]},
    ),
    ("a scale of one entry", "9F 02 58 04 02 30 31 5F 9F 03", "gauges.", {"scale": ["01"]}),
    ("top texts", "9F 02 58 04 03 4C 00 52 00 41 9F 03", "gauges.", {"topTexts": ["L", "R"]}),
    ("bottom texts", "9F 02 58 04 04 6C 00 72 00 46 9F 03", "gauges.", {"bottomTexts": ["l", "r"]}),
    (
        "the gauges' state, peak colour 7 reads as 0",
        "9F 02 58 04 05 01 02 FE FF 03 04 05 06 07 08 09 9F 9F 00 C6 9F 03",
        "gauges.",
        entries("zeroPosition", "1 3 5 7 9")
        | entries("value", "2 4 6 8 159")
        | entries("format", "1 1 1 1 1")
        | values(shift=0, labelState1=3, labelState2=3, peakColor=0, valueTexts=""),
    ),
    (
        "peak colour 6, and a value text that is not closed",
        "9F 02 58 04 05 01 02 FE 1B 03 04 05 06 07 08 09 0A 78 79 B6 9F 03",
        "gauges.",
        entries("zeroPosition", "1 3 5 7 9")
        | entries("value", "2 4 6 8 10")
        | entries("format", "1 1 1 1 1")
        | values(shift=0, labelState1=3, labelState2=3, peakColor=6),
    ),
    (
        "the gauges' state of a drive",
        "9F 02 58 04 05 80 9E 43 05 00 20 00 40 00 60 00 7F 39 35 00 72 9F 03",
        "gauges.",
        entries("zeroPosition", "128 0 0 0 0")
        | entries("value", "158 32 64 96 127")
        | entries("format", "1 0 0 0 0")
        | values(shift=1, labelState1=1, labelState2=1, peakColor=1, valueTexts="95"),
    ),
    ("the vehicle's title", "9F 02 60 05 00 41 75 74 6F 4A 9F 03", "vehicle.", values(title="Auto")),
    ("vehicle labels", "9F 02 60 05 01 41 00 25 9F 03", "vehicle.", values(labels="A")),
    (
        "the vehicle's state",
        "9F 02 60 05 02 DA E4 67 32 2E 33 00 00 11 9F 03",
        "vehicle.",
        entries("door", "0 1 0 1")
        | values(hood=1, trunk=0)
        | entries("tire", "0 1 2 3")
        | values(checkEngine=3, battery=1, labelState1=2, labelState2=1)
        | {"tireTexts": ["2.3", ""]},
    ),
    (
        "the vehicle's state without texts",
        "9F 02 60 05 02 21 04 16 54 9F 03",
        "vehicle.",
        entries("door", "1 0 0 0")
        | values(hood=0, trunk=1)
        | entries("tire", "0 1 0 0")
        | values(checkEngine=2, battery=1, labelState1=1, labelState2=0),
    ),
    ("the parking title", "9F 02 68 06 00 50 00 3E 9F 03", "parking.", values(title="P")),
    ("parking labels", "9F 02 68 06 01 50 31 00 50 32 00 6C 9F 03", "parking.", {"labels": ["P1", "P2"]}),
    (
        "the parking state",
        "9F 02 68 06 02 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 A6 DA 9F 03",
        "parking.",
        entries("front", "1 2 3 4")
        | entries("rear", "5 6 7 8")
        | entries("left", "9 10 11 12")
        | entries("right", "13 14 15 16")
        | values(labelState1=2, labelState2=1)
        | entries("sensor", "0 1 0 1"),
    ),
    (
        "9F in the data",
        "9F 02 68 06 02 10 20 9F 9F 40 01 02 04 08 00 00 00 00 00 00 00 00 31 BD 9F 03",
        "parking.",
        entries("front", "16 32 159 64")
        | entries("rear", "1 2 4 8")
        | entries("left", "0 0 0 0")
        | entries("right", "0 0 0 0")
        | values(labelState1=1, labelState2=0)
        | entries("sensor", "1 1 0 0"),
    ),
    ("a move to another screen", "9F 02 70 07 00 02 75 9F 03", "screens.", values(transition=2)),
    ("no code of a move reads as 0", "9F 02 70 07 00 77 9F 03", "screens.", values(transition=0)),
    (
        "a text screen",
        "9F 02 78 11 00 01 02 03 04 02 41 00 42 00 6C 9F 03",
        "textScreen.",
        entries("menu", "1 2 3 4") | values(minus=0, plus=1) | {"texts": ["A", "B"]},
    ),
    (
        "missing bytes of a text screen read as 0",
        "9F 02 78 11 00 09 60 9F 03",
        "textScreen.",
        entries("menu", "9 0 0 0") | values(minus=0, plus=0),
    ),
]

# One byte less than the sub-type's shortest payload.
TOO_SHORT = [
    "9F 02 50 03 00 07 54 9F 03",
    "9F 02 50 03 01 52 9F 03",
    "9F 02 50 03 02 00 D7 00 CD 54 40 20 01 80 55 34 00 01 14 8A 9F 03",
    "9F 02 58 04 00 01 5D 9F 03",
    "9F 02 58 04 01 5D 9F 03",
    "9F 02 58 04 02 30 6E 9F 03",
    "9F 02 58 04 03 5F 9F 03",
    "9F 02 58 04 04 58 9F 03",
    "9F 02 58 04 05 80 9E 43 05 00 20 00 40 00 60 00 7F 7E 9F 03",
    "9F 02 60 05 00 65 9F 03",
    "9F 02 60 05 01 64 9F 03",
    "9F 02 60 05 02 21 04 42 9F 03",
    "9F 02 68 06 00 6E 9F 03",
    "9F 02 68 06 01 6F 9F 03",
    "9F 02 68 06 02 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 7C 9F 03",
]

UNKNOWN_SUBTYPES = [
    "9F 02 50 03 03 01 51 9F 03",
    "9F 02 58 04 06 01 5B 9F 03",
    "9F 02 60 05 03 01 67 9F 03",
    "9F 02 68 06 03 01 6C 9F 03",
]

ITEM_OBJECTS = ("version.", "screens.", "climate.", "gauges.", "vehicle.", "parking.", "textScreen.")


def items_of(tree: Tree) -> list[tuple[str, str]]:
    return [field for field in tree.fields if field[0].startswith(ITEM_OBJECTS)]


class Items(unittest.TestCase):
    maxDiff = None

    def test_each_sub_type_shows_its_items_and_no_others(self) -> None:
        trees = dissection.trees([box(frame) for _, frame, _, _ in FRAMES])
        self.assertEqual(len(trees), len(FRAMES))
        for (what, _, item_object, expected), tree in zip(FRAMES, trees):
            with self.subTest(what):
                self.assertEqual(tree.under(item_object), expected)
                self.assertEqual(len(items_of(tree)), sum(len(found) for found in expected.values()))
                self.assertEqual(tree.experts - {"unanswered", "retransmission"}, set())

    def test_what_is_shorter_than_its_sub_type_is_marked_and_has_no_items(self) -> None:
        for frame, tree in zip(TOO_SHORT, dissection.trees([box(frame) for frame in TOO_SHORT]), strict=True):
            with self.subTest(frame):
                self.assertIn("too_short", tree.experts)
                self.assertEqual(items_of(tree), [])

    def test_an_unknown_sub_type_is_marked_and_has_no_items(self) -> None:
        frames = UNKNOWN_SUBTYPES
        for frame, tree in zip(frames, dissection.trees([box(frame) for frame in frames]), strict=True):
            with self.subTest(frame):
                self.assertIn("unknown_subtype", tree.experts)
                self.assertEqual(items_of(tree), [])

    def test_an_unknown_category_is_marked_and_keeps_its_data(self) -> None:
        [tree] = dissection.trees([box("9F 02 50 21 00 01 70 9F 03")])
        self.assertIn("unknown_category", tree.experts)
        self.assertEqual((tree.one("tp"), tree.one("data")), ("0x21", "01"))

    def test_a_byte_that_is_missing_is_told_from_one_that_is_0(self) -> None:
        blocks = [box("9F 02 41 01 00 00 00 40 9F 03"), box("9F 02 41 01 00 40 9F 03")]
        with tempfile.TemporaryDirectory() as name:
            recording = dissection.write_capture(Path(name), blocks)
            lines = dissection.tshark(Path(name), recording, "-V", "-O", "canbus").splitlines()
        found = [line.strip() for line in lines if "not ready (" in line]
        self.assertEqual(found, ["ready: not ready (0)", "[ready: not ready (0)]"])

    def test_a_frame_of_the_box_has_its_parts(self) -> None:
        [tree] = dissection.trees([box("9F 02 60 05 02 21 04 16 54 9F 03")])
        parts = ("direction", "id", "tp", "category", "mod", "data", "checksum", "checksum.status")
        self.assertEqual(
            [tree.one(part) for part in parts], ["1", "0x60", "0x05", "0x05", "2", "21:04:16", "0x54", "1"]
        )
        self.assertIsNone(tree.one("command"))

    def test_data_is_shown_without_its_escapes(self) -> None:
        [tree] = dissection.trees([box("9F 02 60 05 00 9F 9F 41 9F 9F 24 9F 03")])
        self.assertEqual((tree.one("data"), tree.one("checksum")), ("9f:41:9f", "0x24"))

    def test_a_mark_of_byte_order_is_no_part_of_a_text(self) -> None:
        # "Ä" behind the mark, a surrogate and a lead byte without its followers, "€".
        data = "EF BB BF C3 84 ED A0 80 E2 82 E2 82 AC 00"
        [tree] = dissection.trees([box(f"9F 02 60 05 01 {data} A9 9F 03")])
        self.assertEqual((tree.all("vehicle.labels"), tree.one("checksum.status")), (["Ä€"], "1"))

    def test_a_category_is_filtered_by_its_name(self) -> None:
        blocks = [box("9F 02 48 02 00 15 5F 9F 03"), box("9F 02 60 05 02 21 04 16 54 9F 03")]
        self.assertEqual(len(dissection.packets(blocks, "-Y", 'canbus.category == "Vehicle"')), 1)
        self.assertEqual(len(dissection.packets(blocks, "-Y", "canbus.vehicle.tire.2 == 1")), 1)
        self.assertEqual(len(dissection.packets(blocks, "-Y", "canbus.vehicle.door.2 == 1")), 0)

    def test_the_info_column_tells_the_first_items(self) -> None:
        climate = "9F 02 50 03 02 00 D7 00 CD 54 40 20 01 80 55 34 00 01 14 16 9C 9F 03"
        labels = "9F 02 52 03 01 4F 6E 00 4F 66 66 00 3E 9F 03"
        line_break = "9F 02 60 05 01 41 0A 00 2F 9F 03"
        lines = dissection.columns([box(climate), box(labels), box(line_break)])
        self.assertEqual(
            lines,
            [
                "<- climate 2: mainTemp 215 secondTemp 205 mainUnit 1 secondUnit 1 ...",
                '<- climate 1: labels "On" labels "Off"',
                '<- vehicle 1: labels "A "',
            ],
        )


if __name__ == "__main__":
    dissection.main()
