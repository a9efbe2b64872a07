"""Every command of the head unit, with its arguments."""

from __future__ import annotations

import unittest

import dissection
from dissection import box, head


def arguments(**given: int) -> dict[str, list[str]]:
    return {name: [str(value)] for name, value in given.items()}


# A frame, the operation that sends it, and its arguments.
COMMANDS: list[tuple[str, str, dict[str, list[str]]]] = [
    ("9F 02 21 01 00 00 00 20 9F 03", "connection.request", arguments(reserved=0, connection=0)),
    ("9F 02 40 01 00 00 01 40 9F 03", "connection.check", arguments(reserved=0, connection=1)),
    ("9F 02 78 91 00 01 02 01 EB 9F 03", "player.onMenuPress", arguments(menu=1, item=2, action=1)),
    ("9F 02 50 93 00 01 01 00 C3 9F 03", "climate.onOff", arguments(button=1, press=1, value=0)),
    ("9F 02 50 93 00 02 00 00 C1 9F 03", "climate.rearZone", arguments(button=2, press=0, value=0)),
    ("9F 02 50 93 00 03 01 00 C1 9F 03", "climate.autoMainZoneTempPlus", arguments(button=3, press=1, value=0)),
    ("9F 02 50 93 00 04 01 00 C6 9F 03", "climate.autoMainZoneTempMinus", arguments(button=4, press=1, value=0)),
    ("9F 02 50 93 00 05 01 00 C7 9F 03", "climate.autoSecondZoneTempPlus", arguments(button=5, press=1, value=0)),
    ("9F 02 50 93 00 06 01 00 C4 9F 03", "climate.autoSecondZoneTempMinus", arguments(button=6, press=1, value=0)),
    ("9F 02 50 93 00 07 01 00 C5 9F 03", "climate.manualMainZoneTempUp", arguments(button=7, press=1, value=0)),
    ("9F 02 50 93 00 08 01 00 CA 9F 03", "climate.manualMainZoneTempDown", arguments(button=8, press=1, value=0)),
    ("9F 02 50 93 00 09 01 00 CB 9F 03", "climate.leftHeatedSeat", arguments(button=9, press=1, value=0)),
    ("9F 02 50 93 00 0A 01 00 C8 9F 03", "climate.rightHeatedSeat", arguments(button=10, press=1, value=0)),
    ("9F 02 50 93 00 0B 01 00 C9 9F 03", "climate.leftCooledSeat", arguments(button=11, press=1, value=0)),
    ("9F 02 50 93 00 0C 01 00 CE 9F 03", "climate.rightCooledSeat", arguments(button=12, press=1, value=0)),
    ("9F 02 50 93 00 0D 01 80 4F 9F 03", "climate.autoFanDirectValue", arguments(button=13, press=1, value=128)),
    ("9F 02 50 93 00 0E 01 00 CC 9F 03", "climate.autoBtn", arguments(button=14, press=1, value=0)),
    ("9F 02 50 93 00 0F 01 00 CD 9F 03", "climate.ventPos", arguments(button=15, press=1, value=0)),
    ("9F 02 50 93 00 10 01 00 D2 9F 03", "climate.recircFresh", arguments(button=16, press=1, value=0)),
    ("9F 02 50 93 00 11 01 00 D3 9F 03", "climate.dualBtn", arguments(button=17, press=1, value=0)),
    ("9F 02 50 93 00 12 01 00 D0 9F 03", "climate.acBtn", arguments(button=18, press=1, value=0)),
    ("9F 02 50 93 00 13 01 00 D1 9F 03", "climate.maxACBtn", arguments(button=19, press=1, value=0)),
    ("9F 02 50 93 00 14 01 00 D6 9F 03", "climate.frontDefroster", arguments(button=20, press=1, value=0)),
    ("9F 02 50 93 00 15 01 00 D7 9F 03", "climate.rearDefroster", arguments(button=21, press=1, value=0)),
    ("9F 02 50 93 00 16 01 00 D4 9F 03", "climate.customControl1", arguments(button=22, press=1, value=0)),
    ("9F 02 50 93 00 17 01 00 D5 9F 03", "climate.customControl2", arguments(button=23, press=1, value=0)),
    ("9F 02 50 93 00 18 01 00 DA 9F 03", "climate.heatedSteerWheel", arguments(button=24, press=1, value=0)),
    ("9F 02 50 93 00 19 00 00 DA 9F 03", "climate.fanSpeedUp", arguments(button=25, press=0, value=0)),
    ("9F 02 50 93 00 1A 01 00 D8 9F 03", "climate.fanSpeedDown", arguments(button=26, press=1, value=0)),
    ("9F 02 50 93 00 1B 01 16 CF 9F 03", "climate.manualTemp", arguments(button=27, press=1, value=22)),
    ("9F 02 50 93 00 1C 01 05 DB 9F 03", "climate.manualFanSpeed", arguments(button=28, press=1, value=5)),
    ("9F 02 58 94 00 01 01 CC 9F 03", "gauges.Gauge1_CenterGauge", arguments(button=1, press=1)),
    ("9F 02 58 94 00 02 01 CF 9F 03", "gauges.Gauge2_TopLeft", arguments(button=2, press=1)),
    ("9F 02 58 94 00 03 00 CF 9F 03", "gauges.Gauge3_TopRight", arguments(button=3, press=0)),
    ("9F 02 58 94 00 04 01 C9 9F 03", "gauges.Gauge4_BottomLeft", arguments(button=4, press=1)),
    ("9F 02 58 94 00 05 01 C8 9F 03", "gauges.Gauge5_BottomRight", arguments(button=5, press=1)),
    ("9F 02 58 94 00 06 01 CB 9F 03", "gauges.customControl1", arguments(button=6, press=1)),
    ("9F 02 58 94 00 07 01 CA 9F 03", "gauges.customControl2", arguments(button=7, press=1)),
    ("9F 02 60 95 00 01 01 F5 9F 03", "vehicle.checkEngine", arguments(button=1, press=1)),
    ("9F 02 60 95 00 02 01 F6 9F 03", "vehicle.customControl1", arguments(button=2, press=1)),
    ("9F 02 60 95 00 03 01 F7 9F 03", "vehicle.customControl2", arguments(button=3, press=1)),
    ("9F 02 68 96 00 01 01 FE 9F 03", "parking.customControl1", arguments(button=1, press=1)),
    ("9F 02 68 96 00 02 01 FD 9F 03", "parking.customControl2", arguments(button=2, press=1)),
    ("9F 02 22 97 00 00 B5 9F 03", "player.requestNormal", arguments(page=0)),
    ("9F 02 50 97 00 01 C6 9F 03", "climate.requestClimateInfo", arguments(page=1)),
    ("9F 02 58 97 00 02 CD 9F 03", "gauges.requestGaugesInfo", arguments(page=2)),
    ("9F 02 60 97 00 03 F4 9F 03", "vehicle.requestVehicleInfo", arguments(page=3)),
    ("9F 02 68 97 00 04 FB 9F 03", "parking.requestParkInfo", arguments(page=4)),
    ("9F 02 50 93 00 1B 01 9F 9F 46 9F 03", "climate.manualTemp", arguments(button=27, press=1, value=159)),
    ("9F 02 50 93 00 1B 01 46 9F 9F 9F 03", "climate.manualTemp", arguments(button=27, press=1, value=70)),
    ("9F 02 9F 9F 96 00 02 01 0A 9F 03", "parking.customControl2", arguments(button=2, press=1)),
    (
        "9F 02 23 98 00 22 0C 05 0B 14 1A 00 95 9F 03",
        "player.syncGPSTimeToCanbus",
        arguments(minute=34, hour=12, day=5, month=11, yearFirst2=20, yearLast2=26, format=0),
    ),
    (
        "9F 02 23 98 00 FF FF FF FF FF FF FF 44 9F 03",
        "player.syncGPSTimeToCanbus",
        arguments(minute=255, hour=255, day=255, month=255, yearFirst2=255, yearLast2=255, format=255),
    ),
]

# What it shows, the frame, and the arguments as far as there are bytes for them.
UNKNOWN: list[tuple[str, str, dict[str, list[str]]]] = [
    ("no such climate button", "9F 02 50 93 00 1D 01 00 DF 9F 03", arguments(button=29, press=1, value=0)),
    ("button 0", "9F 02 50 93 00 00 01 00 C2 9F 03", arguments(button=0, press=1, value=0)),
    ("neither pressed nor released", "9F 02 50 93 00 12 02 00 D3 9F 03", arguments(button=18, press=1, value=0)),
    ("no value", "9F 02 50 93 00 12 01 D0 9F 03", arguments(button=18, press=1)),
    ("a byte too many", "9F 02 50 93 00 12 01 00 00 D0 9F 03", arguments(button=18, press=1, value=0)),
    ("another MOD", "9F 02 50 93 01 12 01 00 D1 9F 03", arguments(button=18, press=1, value=0)),
    ("the release of a gauges' tap", "9F 02 58 94 00 06 00 CA 9F 03", arguments(button=6, press=0)),
    ("the release of a vehicle's tap", "9F 02 60 95 00 01 00 F4 9F 03", arguments(button=1, press=0)),
    ("the release of a parking tap", "9F 02 68 96 00 02 00 FC 9F 03", arguments(button=2, press=0)),
    ("no such page", "9F 02 22 97 00 05 B0 9F 03", arguments(page=5)),
    ("settings with a value", "9F 02 60 92 00 01 F3 9F 03", arguments(value=1)),
    ("no such connection command", "9F 02 21 01 00 00 02 22 9F 03", arguments(reserved=0, connection=2)),
    ("a reserved byte that is used", "9F 02 21 01 00 01 00 21 9F 03", arguments(reserved=1, connection=0)),
    ("half a time", "9F 02 23 98 00 22 0C 95 9F 03", arguments(minute=34, hour=12)),
    ("no such command", "9F 02 50 99 00 C9 9F 03", {}),
]

# Frames of the box with the ids 50, 58, 60 and 68.
OWNERS = [
    "9F 02 50 03 00 00 00 53 9F 03",
    "9F 02 58 04 03 4C 00 52 00 41 9F 03",
    "9F 02 60 05 01 41 00 25 9F 03",
    "9F 02 68 06 00 50 00 3E 9F 03",
]
SETTINGS = [
    ("9F 02 50 92 00 00 C2 9F 03", "climate.settings"),
    ("9F 02 58 92 00 00 CA 9F 03", "gauges.settings"),
    ("9F 02 60 92 00 00 F2 9F 03", "vehicle.settings"),
    ("9F 02 68 92 00 00 FA 9F 03", "parking.settings"),
    ("9F 02 33 92 00 00 A1 9F 03", "settings"),
]

INFO = [
    ("9F 02 50 93 00 12 01 00 D0 9F 03", "-> climate.acBtn press"),
    ("9F 02 50 93 00 19 00 00 DA 9F 03", "-> climate.fanSpeedUp release"),
    ("9F 02 50 93 00 1B 01 16 CF 9F 03", "-> climate.manualTemp press value 22"),
    ("9F 02 78 91 00 01 02 01 EB 9F 03", "-> player.onMenuPress menu 1 item 2 action 1"),
    ("9F 02 23 98 00 22 0C 05 0B 14 1A 00 95 9F 03", "-> player.syncGPSTimeToCanbus 2026-11-05 12:34"),
    ("9F 02 23 98 00 FF FF FF FF FF FF FF 44 9F 03", "-> player.syncGPSTimeToCanbus unknown"),
    ("9F 02 22 97 00 00 B5 9F 03", "-> player.requestNormal"),
    ("9F 02 50 99 00 C9 9F 03", "-> unknown command 99"),
]


class Commands(unittest.TestCase):
    maxDiff = None

    def test_each_command_is_named_and_shows_its_arguments(self) -> None:
        trees = dissection.trees([head(frame) for frame, _, _ in COMMANDS])
        for (frame, name, expected), tree in zip(COMMANDS, trees, strict=True):
            with self.subTest(name, frame=frame):
                self.assertEqual(tree.under("command."), {"name": [name]} | expected)
                self.assertEqual(tree.experts - {"unanswered", "retransmission"}, set())
                self.assertIsNone(tree.one("category"))

    def test_what_no_operation_sends_is_unknown_and_keeps_its_arguments(self) -> None:
        trees = dissection.trees([head(frame) for _, frame, _ in UNKNOWN])
        for (what, frame, expected), tree in zip(UNKNOWN, trees, strict=True):
            with self.subTest(what, frame=frame):
                self.assertEqual(tree.under("command."), {"name": ["unknown"]} | expected)
                self.assertIn("unknown_command", tree.experts)

    def test_the_id_tells_whose_settings_are_meant(self) -> None:
        blocks = [box(frame) for frame in OWNERS] + [head(frame) for frame, _ in SETTINGS]
        names = [tree.one("command.name") for tree in dissection.trees(blocks)[len(OWNERS) :]]
        self.assertEqual(names, [name for _, name in SETTINGS])

    def test_the_last_category_that_used_an_id_owns_the_settings(self) -> None:
        blocks = [
            box("9F 02 60 05 01 41 00 25 9F 03"),
            head("9F 02 60 92 00 00 F2 9F 03", 10),
            box("9F 06 60 60 9F 03", 11),
            box("9F 02 60 06 00 50 00 36 9F 03", 12),
            head("9F 02 60 92 00 00 F2 9F 03", 20),
        ]
        names = [tree.one("command.name") for tree in dissection.trees(blocks)]
        self.assertEqual(names, [None, "vehicle.settings", None, None, "parking.settings"])

    def test_a_command_has_its_parts(self) -> None:
        [tree] = dissection.trees([head("9F 02 50 93 00 12 01 00 D0 9F 03")])
        parts = ("direction", "id", "tp", "command", "mod", "data", "checksum", "checksum.status")
        self.assertEqual(
            [tree.one(part) for part in parts], ["0", "0x50", "0x93", "0x93", "0", "12:01:00", "0xd0", "1"]
        )

    def test_the_info_column_tells_the_operation(self) -> None:
        lines = dissection.columns([head(frame) for frame, _ in INFO])
        self.assertEqual(lines, [line for _, line in INFO])

    def test_a_command_is_filtered_by_its_name(self) -> None:
        blocks = [head("9F 02 50 93 00 12 01 00 D0 9F 03"), head("9F 02 22 97 00 00 B5 9F 03")]
        for condition in ('canbus.command == "ClimateButton"', 'canbus.command.name == "climate.acBtn"'):
            with self.subTest(condition):
                self.assertEqual(len(dissection.packets(blocks, "-Y", condition)), 1)


if __name__ == "__main__":
    dissection.main()
