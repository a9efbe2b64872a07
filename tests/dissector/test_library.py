"""The fields of the dissector against the signals of the library, for the same bytes.

The recordings are those of tests/recordings, one of every item, and two that are made here of the simulated box
and the monitor.
"""

from __future__ import annotations

import json
import os
import signal
import subprocess
import tempfile
import time
import unittest
from collections.abc import Callable, Iterable, Sequence
from dataclasses import dataclass
from pathlib import Path
from typing import Any

import dissection
from dissection import Tree, box
from test_items import FRAMES

BIN = Path(os.environ.get("CANBUS_BIN_DIR", "bin"))
EMULATOR = [os.environ["CANBUS_EMULATOR"]] if "CANBUS_EMULATOR" in os.environ else []
SOURCES = Path(__file__).resolve().parents[2]
RECORDINGS = SOURCES / "tests" / "recordings"
DRIVE = SOURCES / "scenarios" / "builtin-drive.json"
FAULTS = {"bad_check", "broken", "stray", "early_end"}
REFUSED = {"bad_check", "too_short", "unknown_subtype"}

Reader = Callable[[Tree], Any]
Moment = tuple[float, Any]  # seconds since the first block, and a value


@dataclass(frozen=True)
class Source:
    """Where the arguments of a signal stand."""

    category: str
    mod: str | None
    readers: tuple[Reader, ...]
    is_throttled: bool = False

    def holds(self, tree: Tree) -> bool:
        return (
            tree.one("category") == self.category
            and self.mod in (None, tree.one("mod"))
            and not tree.experts & REFUSED
        )

    def value(self, tree: Tree) -> list[Any]:
        return [read(tree) for read in self.readers]


def present(value: str | None) -> str:
    assert value is not None, "a field is missing"
    return value


def number(name: str) -> Reader:
    return lambda tree: int(present(tree.one(name)))


def flag(name: str) -> Reader:
    return lambda tree: present(tree.one(name)) == "1"


def text(name: str) -> Reader:
    return lambda tree: present(tree.one(name))


def texts(name: str) -> Reader:
    return lambda tree: tree.all(name)


def numbers(name: str, count: int) -> Reader:
    return lambda tree: [number(f"{name}.{i}")(tree) for i in range(1, count + 1)]


def flags(name: str, count: int) -> Reader:
    return lambda tree: [flag(f"{name}.{i}")(tree) for i in range(1, count + 1)]


def keyed_flags(name: str, count: int) -> Reader:
    return lambda tree: {str(i): flag(f"{name}.{i + 1}")(tree) for i in range(count)}


def climate(mod: int, *readers: Reader) -> Source:
    return Source("0x03", str(mod), readers)


def gauges(mod: int, *readers: Reader, is_throttled: bool = False) -> Source:
    return Source("0x04", str(mod), readers, is_throttled)


def vehicle(mod: int, *readers: Reader, is_throttled: bool = False) -> Source:
    return Source("0x05", str(mod), readers, is_throttled)


def parking(mod: int, *readers: Reader) -> Source:
    return Source("0x06", str(mod), readers)


SIGNALS: dict[str, Source] = {
    "updateClimateType": climate(0, number("climate.type")),
    "updateClimateTopText": climate(0, text("climate.title")),
    "updateClimateComText": climate(1, texts("climate.labels")),
    "updateClimateBtnStatus": climate(2, numbers("climate.button", 20)),
    "updateClimateMainTemp": climate(2, number("climate.mainTemp"), number("climate.mainUnit")),
    "updateClimateSecondTemp": climate(2, number("climate.secondTemp"), number("climate.secondUnit")),
    "updateClimateHeatSeat": climate(2, number("climate.leftHeatedSeat"), number("climate.rightHeatedSeat")),
    "updateClimateCoolSeat": climate(2, number("climate.leftCooledSeat"), number("climate.rightCooledSeat")),
    "updateClimateFanDirectValue": climate(2, number("climate.fanDirectValue")),
    "updateClimateFanSpeedStatus": climate(2, number("climate.fanSpeedStatus")),
    "updateClimateVentPosition": climate(2, number("climate.ventPosition")),
    "updateClimateFanDirect": climate(2, number("climate.fanDirect")),
    "updateClimateManualTempValue": climate(2, number("climate.manualTemp")),
    "updateClimateSystem": climate(2, flag("climate.systemOn")),
    "updateClimateDriverSeatPos": climate(2, flag("climate.driverSeat")),
    "updateGaugeType": gauges(0, keyed_flags("gauges.type", 4)),
    "updateGaugeTopText": gauges(0, text("gauges.title")),
    "updateGaugeComText": gauges(1, texts("gauges.labels")),
    "updateGaugeScale": gauges(2, texts("gauges.scale")),
    "updateGaugeCenterText": gauges(2, texts("gauges.centerTexts")),
    "updateGaugeTopLRText": gauges(3, texts("gauges.topTexts")),
    "updateGaugeBottomLRText": gauges(4, texts("gauges.bottomTexts")),
    "updateGaugeZeroPos": gauges(5, numbers("gauges.zeroPosition", 5)),
    "updateGaugeValue": gauges(5, numbers("gauges.value", 5), is_throttled=True),
    "updateGaugeValueText": gauges(5, texts("gauges.valueTexts"), is_throttled=True),
    "updateGaugeShift": gauges(5, flag("gauges.shift"), is_throttled=True),
    "updateGaugeFormat": gauges(5, flags("gauges.format", 5)),
    "updateGaugePeakColorState": gauges(5, number("gauges.peakColor")),
    "updateGaugeComLabelsState": gauges(5, number("gauges.labelState1"), number("gauges.labelState2")),
    "updateVehicleTopText": vehicle(0, text("vehicle.title")),
    "updateVehicleComText": vehicle(1, texts("vehicle.labels")),
    "updateVehicleDoorStatus": vehicle(2, flags("vehicle.door", 4)),
    "updateVehicleHoodk": vehicle(2, flag("vehicle.hood")),
    "updateVehicleTrunk": vehicle(2, flag("vehicle.trunk")),
    "updateVehicleTire": vehicle(2, numbers("vehicle.tire", 4)),
    "updateVehicleCheckEngineState": vehicle(2, number("vehicle.checkEngine")),
    "updateVehicleBattery": vehicle(2, flag("vehicle.battery")),
    "updateVehicleComLabelsState": vehicle(2, number("vehicle.labelState1"), number("vehicle.labelState2")),
    "updateVehicleTireText": vehicle(2, texts("vehicle.tireTexts"), is_throttled=True),
    "updateParkTopText": parking(0, text("parking.title")),
    "updateParkComText": parking(1, texts("parking.labels")),
    "updateParkSensorFront": parking(2, numbers("parking.front", 4)),
    "updateParkSensorRear": parking(2, numbers("parking.rear", 4)),
    "updateParkSensorLeft": parking(2, numbers("parking.left", 4)),
    "updateParkSensorRight": parking(2, numbers("parking.right", 4)),
    "updateParkComLabelsState": parking(2, number("parking.labelState1"), number("parking.labelState2")),
    "updateParkSensorStatus": parking(2, flags("parking.sensor", 4)),
    "updateScreenInfo": Source("0x02", None, (keyed_flags("screens.supported", 5),)),
    "updateMenuInfo": Source(
        "0x11",
        None,
        (
            numbers("textScreen.menu", 4),
            flag("textScreen.minus"),
            flag("textScreen.plus"),
            texts("textScreen.texts"),
        ),
    ),
}


def changes(moments: Iterable[Moment]) -> list[Moment]:
    """Without those that tell what is known."""
    found: list[Moment] = []
    for moment in moments:
        if not found or found[-1][1] != moment[1]:
            found.append(moment)
    return found


def is_nothing(value: Any) -> bool:
    """What the library holds before it has heard anything."""
    if isinstance(value, dict):
        return False
    return all(map(is_nothing, value)) if isinstance(value, list) else not value


def signals_of(monitor_output: str) -> dict[str, list[Moment]]:
    """The values that each signal has announced."""
    announced: dict[str, list[Moment]] = {}
    for line in monitor_output.splitlines():
        report = json.loads(line)
        if report.get("signal", "").startswith("update"):
            announced.setdefault(report["signal"], []).append((report["t"], list(report["args"].values())))
    return announced


def runnable(name: str, *arguments: str) -> list[str]:
    """One of the commands, by the emulator where it is for another machine."""
    return [*EMULATOR, str(BIN / name), *arguments]


def read_by_library(recording: Path) -> dict[str, list[Moment]]:
    words = runnable("canbus-monitor", "--read", str(recording), "--json")
    done = subprocess.run(words, stdin=subprocess.DEVNULL, capture_output=True, check=False, text=True)
    assert done.returncode == 0, f"{words}: {done.stderr}"
    return signals_of(done.stdout)


def read_by_dissector(recording: Path) -> list[Tree]:
    with tempfile.TemporaryDirectory() as folder:
        packets = dissection.read_packets(Path(folder), recording, "-2")
    return [tree for packet in packets for tree in packet]


class Process:
    """One of the commands, ended with the block that it is used in."""

    def __init__(self, *command: str, output: Path) -> None:
        with output.open("wb") as file:
            self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=file, stderr=subprocess.STDOUT)

    def __enter__(self) -> subprocess.Popen[bytes]:
        return self.process

    def __exit__(self, *_: object) -> None:
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGINT)
            self.process.wait(timeout=30)


def wait_for_link(link: Path, box: subprocess.Popen[bytes], output: Path) -> None:
    end = time.monotonic() + 30
    while not link.exists():
        assert box.poll() is None and time.monotonic() < end, f"the box: {output.read_text(encoding='utf-8')}"
        time.sleep(0.02)


# Several in a row: each sends the one under way again.
CALLS = (
    "climate.acBtn",
    "climate.rearZone=true",
    "climate.rearZone=false",
    "climate.manualTemp=159",
    "climate.settings",
    "gauges.Gauge3_TopRight=true",
    "gauges.settings",
    "vehicle.checkEngine",
    "vehicle.settings",
    "parking.customControl2",
    "parking.settings",
    "player.onMenuPress=1,2,3",
    "player.requestNormal",
    "parking.requestParkInfo",
)


# The arguments by which the box tells what it has received.
ARGUMENTS = ("press", "value", "menu", "item", "action", "minute", "hour", "day", "month", "yearFirst2", "yearLast2")


def record(folder: Path, seconds: int, *box_options: str) -> tuple[Path, list[dict[str, Any]]]:
    """A drive of the simulated box. @return the recording, and what the box has reported"""
    link, recording, reports = folder / "line", folder / "drive.pcapng", folder / "box.txt"
    drive = ("--scenario", str(DRIVE), "--speed", "5")
    simulator = runnable("canbus-boxsim", "--pty", str(link), "--json", *drive, *box_options)
    calls = [word for call in CALLS for word in ("--call", call)]
    monitor = runnable("canbus-monitor", "--port", str(link), "--record", str(recording))
    with Process(*simulator, output=reports) as process:
        wait_for_link(link, process, reports)
        with Process(*monitor, "--for", str(seconds), *calls, output=folder / "monitor.txt") as head_unit:
            assert head_unit.wait(timeout=seconds + 30) == 0, (folder / "monitor.txt").read_text(encoding="utf-8")
    lines = reports.read_text(encoding="utf-8").splitlines()
    return recording, [json.loads(line) for line in lines if line.startswith("{")]


class Library(unittest.TestCase):
    maxDiff = None

    def check_subsequence(self, announced: Sequence[Moment], found: Sequence[Moment]) -> None:
        position = 0
        for seconds, value in announced:
            while position < len(found) and found[position][1] != value:
                position += 1
            self.assertLess(position, len(found), f"{value} at {seconds} s is in no frame behind those before")
            self.assertLessEqual(found[position][0], seconds + 0.001, f"{value} is announced before its frame")

    def check_signal(self, source: Source, announced: list[Moment], found: list[Moment], is_clean: bool) -> None:
        if announced and is_nothing(announced[0][1]) and found[0][1] != announced[0][1]:
            announced = announced[1:]  # announced together with what has changed
        if found and is_nothing(found[0][1]) and announced[:1] != found[:1]:
            announced = announced[1:] if announced and is_nothing(announced[0][1]) else announced
            found = found[1:]
        self.check_subsequence(announced, found)
        if is_clean and not source.is_throttled:
            self.assertEqual([value for _, value in announced], [value for _, value in found])
        elif is_clean:
            self.assertEqual(announced[-1:] and announced[-1][1], found[-1:] and found[-1][1])

    def check_recording(self, recording: Path) -> tuple[set[str], bool]:
        """@return the signals that have announced something, and whether all frames were whole"""
        trees = read_by_dissector(recording)
        is_clean = not any(tree.experts & FAULTS for tree in trees)
        announced = read_by_library(recording)
        self.assertLessEqual(set(announced), set(SIGNALS), "signals that the table does not know")
        for name, source in SIGNALS.items():
            with self.subTest(recording.name, signal=name):
                found = changes((tree.seconds, source.value(tree)) for tree in trees if source.holds(tree))
                self.check_signal(source, changes(announced.get(name, [])), found, is_clean)
        return set(announced), is_clean

    def check_commands(self, recording: Path, reports: list[dict[str, Any]]) -> None:
        """The box's own names of what it has received, and the dissector's."""
        trees = [tree for tree in read_by_dissector(recording) if tree.one("command.name")]
        commands = [report for report in reports if report["event"] == "command"]
        self.assertGreater(len(commands), len(CALLS))
        # The box may be ended before it has read the last ones.
        self.assertLess(len(trees) - len(commands), 3)
        names = [tree.one("command.name") for tree in trees[: len(commands)]]
        self.assertEqual(names, [command["name"] for command in commands])
        for tree, command in zip(trees, commands):
            known = {name: [str(int(command[name]))] for name in ARGUMENTS if name in command}
            found = {name: value for name, value in tree.under("command.").items() if name in known}
            self.assertEqual(found, known, command)

    def test_the_recordings_of_the_tests(self) -> None:
        recordings = sorted(RECORDINGS.glob("*.pcapng"))
        if not recordings:
            self.skipTest(f"{RECORDINGS} holds none")
        for recording in recordings:
            self.check_recording(recording)

    def test_every_item(self) -> None:
        blocks = [box(frame, ms=500 * i) for i, (_, frame, _, _) in enumerate(FRAMES)]
        with tempfile.TemporaryDirectory() as name:
            recording = dissection.write_capture(Path(name), blocks)
            self.assertEqual(self.check_recording(recording), (set(SIGNALS), True))

    def test_a_drive(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            recording, reports = record(Path(folder), 12)
            announced, is_clean = self.check_recording(recording)
            self.assertGreater(len(announced), len(SIGNALS) - 5)
            self.assertTrue(is_clean)
            self.check_commands(recording, reports)

    def test_a_drive_over_a_bad_line(self) -> None:
        faults = ("--seed", "7", "--drop-answers", "0.2", "--corrupt", "0.002", "--noise", "20", "--split")
        with tempfile.TemporaryDirectory() as folder:
            recording, _ = record(Path(folder), 12, *faults)
            announced, is_clean = self.check_recording(recording)
            self.assertGreater(len(announced), len(SIGNALS) // 2)
            self.assertFalse(is_clean)


if __name__ == "__main__":
    dissection.main()
