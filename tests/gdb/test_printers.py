#!/usr/bin/env python3
"""The pretty printers of tools/gdb, in gdb on a program whose values are known.

usage: test_printers.py PROGRAM
"""
import pathlib
import subprocess
import sys
import unittest

PRINTERS = pathlib.Path(__file__).resolve().parents[2] / "tools" / "gdb" / "canbus.py"

# What gdb prints for each expression.
PRINTED = {
    "payload": "3 bytes: 00 ff 41",
    "nothing": "no bytes",
    "longOne": "70 bytes:" + 64 * " 9f" + " and 6 more",
    "frame": "id 52, TP Climate (03), MOD 01, DATA 00 01 9f, CS cf",
    "noFrame": "id none, TP none, MOD none, DATA none, CS 00",
    "emptyQueue": "handshaking, 0 cached",
    "queue": "handshaking, 2 cached, id 51 under way, sent 2 times = {"
             "[0] = ClimateButton (93), id 51: 9f 02 51 93 00 13 01 00 d0 9f 03, "
             "[1] = ClimateButton (93), id 9f: 9f 02 9f 9f 93 00 04 01 00 9a 9f 03}",
    "write": "Write ClimateButton (93), id 51: 9f 02 51 93 00 13 01 00 d0 9f 03",
    "start": "StartTimer Send",
    "ended": "Ended GivenUp after 3 transmissions, 900000 us: 3 bytes: 9f 02 23",
    "down": "LinkDown",
    "figures.receivedBytes": "300",
    "figures": "figures that are not 0 = {receivedBytes = 300, receivedFrames = 2, sentBytes = 11, sentFrames = 1, "
               "frames of Climate = 2, frames of command ClimateButton = 1}",
    "*health": "figures that are not 0 = {cacheHighWater = 1, connectRequests = 1, sentBytes = 10, sentFrames = 1, "
               "frames of command Connection = 1}",
    "report": "figures that are not 0 = {receivedBytes = 300, receivedFrames = 2, sentBytes = 11, sentFrames = 1}",
}


class Printers(unittest.TestCase):
    """Each expression, all in one run of gdb."""

    @classmethod
    def setUpClass(cls):
        commands = ["set width 0", f"source {PRINTERS}", "break stopHere", "run", "up"]
        commands += [command for name in PRINTED for command in (f"echo \\n== {name}\\n", f"output {name}")]
        arguments = [argument for command in commands for argument in ("-ex", command)]
        done = subprocess.run(["gdb", "-nx", "-batch", *arguments, cls.program], capture_output=True, text=True,
                              check=False, timeout=120)
        cls.said = done.stdout + done.stderr
        cls.printed = dict(part.partition("\n")[::2] for part in done.stdout.split("\n== ")[1:])

    def test_shows_each_value(self):
        self.assertEqual(set(self.printed), set(PRINTED), self.said)
        for name, text in PRINTED.items():
            with self.subTest(name):
                self.assertEqual(self.printed[name].strip(), text, self.said)


if __name__ == "__main__":
    Printers.program = sys.argv.pop()
    unittest.main()
