#!/usr/bin/env python3
"""The completions offer what the commands take: test_completions.py BIN_FOLDER [unittest's arguments]."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
COMPLETIONS = SOURCE / "packaging/completions"
BIN = pathlib.Path(sys.argv.pop(1)) if len(sys.argv) > 1 else None
COMMANDS = ("canbus-boxsim", "canbus-headunit", "canbus-monitor")
WITHOUT_DISPLAY = {**os.environ, "QT_QPA_PLATFORM": "offscreen"}

# The completion's surroundings in bash: the words come from outside, and files are named as such.
BASH = r"""
_init_completion() { split=false; }
_filedir() { COMPREPLY=(FILES); }
compgen() { [ "$1" != -G ] && builtin compgen "$@"; }
compopt() { :; }
complete() { :; }
shopt -s extglob
source "$1"
prev=$2 given=$3
function_name=_${4//-/_}
eval "$(declare -f "$function_name" | sed 's/local cur prev words cword split/cur=$given/')"
"$function_name" "$4"
printf '%s\n' "${COMPREPLY[@]}"
"""
# In zsh, what the completion hands to _arguments.
ZSH = r"""
_arguments() { print -rl -- "$@" }
_values() { print -rl -- "${@:3}" }
compadd() { print -rl -- "$@" }
source "$1"
[ -z "$2" ] || "$2"
"""


def run(*words, **more):
    return subprocess.run(words, check=True, capture_output=True, text=True, timeout=60, **more).stdout


def options(command):
    """The options by --help: each with the name of its value, or nothing."""
    text = run(BIN / command, "--help", env=WITHOUT_DISPLAY)
    return dict(re.findall(r"^  --([a-z-]+)(?: <([^>]+)>)?", text, re.MULTILINE))


def in_bash(command, previous="", current=""):
    """What bash offers for a word that is begun, behind a word."""
    return run("bash", "-c", BASH, "bash", COMPLETIONS / "bash" / command, previous, current, command).split()


def in_zsh(command):
    """The options of the completion in zsh: each with what is said of its value, or nothing."""
    specs = run("zsh", "-fc", ZSH, "zsh", COMPLETIONS / "zsh" / f"_{command}", "").splitlines()
    found = (re.fullmatch(r"(?:\([^)]*\))?\*?--([a-z-]+)(=?)\[.*\](?::(.*))?", spec) for spec in specs)
    return {each[1]: each[3] or "" for each in found}


def values_in_zsh(command, option):
    return re.search(r"\((.*)\)", in_zsh(command)[option])[1].split()


def named_values(command, option):
    """The values that --help names: "this page: climate, gauges or link." """
    text = re.sub(r"\s+", " ", run(BIN / command, "--help", env=WITHOUT_DISPLAY))
    sentence = re.search(rf"--{option} <[^>]+> [^.]*?: ([a-z, ]+)\.", text)
    return re.split(r", | or ", sentence[1])


class Options(unittest.TestCase):
    def test_bothShellsOfferTheOptionsOfTheCommand(self):
        for command in COMMANDS:
            with self.subTest(command=command):
                expected = sorted(options(command))
                self.assertGreater(len(expected), 8)
                self.assertEqual(sorted(each[2:] for each in in_bash(command, command, "--")), expected)
                self.assertEqual(sorted(in_zsh(command)), expected)

    def test_aValueIsCompletedBehindOptionsThatTakeOne(self):
        for command in COMMANDS:
            for option, value in options(command).items():
                with self.subTest(command=command, option=option):
                    offers_options = "--help" in in_bash(command, f"--{option}")
                    self.assertEqual(offers_options, not value)
                    self.assertEqual(bool(in_zsh(command)[option]), bool(value))

    def test_filesAreOfferedWhereTheyAreTaken(self):
        for command in COMMANDS:
            for option, value in options(command).items():
                if value in ("FILE", "DIR", "LINK", "DEVICE"):
                    with self.subTest(command=command, option=option):
                        self.assertEqual(in_bash(command, f"--{option}"), ["FILES"])


class Values(unittest.TestCase):
    def test_screensAndPagesAreThoseOfTheHelp(self):
        for command, option in (("canbus-monitor", "screen"), ("canbus-headunit", "page")):
            with self.subTest(command=command):
                expected = sorted(named_values(command, option))
                self.assertGreater(len(expected), 4)
                self.assertEqual(sorted(in_bash(command, f"--{option}")), expected)
                self.assertEqual(sorted(values_in_zsh(command, option)), expected)

    def test_sizesAreTaken(self):
        sizes = in_bash("canbus-headunit", "--size")
        self.assertGreater(len(sizes), 1)
        self.assertEqual(values_in_zsh("canbus-headunit", "size"), sizes)
        for size in sizes:
            # A mistake in a size would be told before the one behind it.
            told = subprocess.run([BIN / "canbus-headunit", "--size", size, "word"], capture_output=True, text=True,
                                  check=False, timeout=60, env=WITHOUT_DISPLAY).stderr
            self.assertIn('"word" is no option', told)

    def test_aFlagOfAFaultIsOnOrOff(self):
        self.assertEqual(in_bash("canbus-boxsim", "--fault", "silence=o"), ["on", "off"])
        self.assertEqual(in_bash("canbus-boxsim", "--fault", "noise="), [])


class Running(unittest.TestCase):
    """What only a box and a monitor that run tell."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.link = pathlib.Path(self.folder.name) / "box"
        self.box = subprocess.Popen([BIN / "canbus-boxsim", "--pty", self.link], text=True,
                                    stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.addCleanup(self.end_box)
        self.assertTrue(self.box.stdout.readline().startswith("ready"))

    def end_box(self):
        self.box.kill()
        self.box.communicate()

    def test_bothShellsOfferEveryFault(self):
        lines = self.box.communicate("help fault\nquit\n", timeout=60)[0].splitlines()
        faults = {line.split()[0].removeprefix("fault.") for line in lines if line.startswith("fault.")}
        flags = {line.split()[0].removeprefix("fault.") for line in lines if re.search(r" off or on ", line)}
        self.assertGreater(len(faults), 10)
        self.assertEqual({each.rstrip("=") for each in in_bash("canbus-boxsim", "--fault")}, faults)
        file = COMPLETIONS / "zsh/_canbus-boxsim"
        shell = ZSH + "print -rl -- BEHIND; _canbus_boxsim_faults"
        offered = run("zsh", "-fc", shell, "zsh", file, "").split("BEHIND\n")[1].splitlines()
        self.assertEqual({each.split(":")[0] for each in offered}, faults)
        self.assertEqual({each.split(":")[0] for each in offered if each.endswith(":(on off)")}, flags)

    def test_bothShellsOfferEveryGroupOfCalls(self):
        lines = run(BIN / "canbus-monitor", "--port", self.link, input="help\nquit\n").splitlines()
        groups = {match[1] for match in (re.match(r"([a-z]+\.)\w+(\(|=|$)", line) for line in lines) if match}
        self.assertGreater(len(groups), 4)
        self.assertEqual(set(in_bash("canbus-monitor", "--call")), groups)
        shell = ZSH + "print -rl -- BEHIND; _canbus_monitor_groups"
        offered = run("zsh", "-fc", shell, "zsh", COMPLETIONS / "zsh/_canbus-monitor", "").split("BEHIND\n")[1]
        self.assertEqual({each for each in offered.split() if each.endswith(".")}, groups)


if __name__ == "__main__":
    sys.exit(unittest.main())
