#!/usr/bin/env python3
"""Runs the commands of the documents as they stand: run.py ROOT BUILD [--only DOCUMENT] [--whole].

They run in BUILD/docs-commands, a copy of the project in which build/dev is BUILD. With --whole those that take
minutes are run too. What is not in the table commands.txt is run and has to end with status 0.
"""

import argparse
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import threading
import time

import claims
import markdown
import names
import plan
import shell

LIMIT = 60  # seconds for a command to end, or to print what it is run for
WHOLE_LIMIT = 1800
HERE = pathlib.Path(__file__).parent
# Files and devices outside of the project, which a test leaves alone, and what stands for them below the copy.
OUTSIDE = {"/tmp/box": "box", "/dev/ttyUSB0": "box", "/dev/ttyS1": "box", "/opt/canbus": "opt/canbus"}


class Failure(Exception):
    """A command that did not do what it is shown for."""


class Running:
    """A command in a process group of its own, whose output is kept and can be waited for."""

    def __init__(self, text, folder, environment):
        self.output = ""
        self._changed = threading.Condition()
        # What runs this in the background may have Ctrl-C ignored, and that would be inherited.
        command = ["env", "--default-signal=INT", "bash", "-ec", text]
        self._process = subprocess.Popen(command, cwd=folder, env=environment, stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
                                         start_new_session=True)
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self._process.stdout:
            with self._changed:
                self.output += line
                self._changed.notify_all()

    def ended(self, limit):
        """The status, once it has ended by itself."""
        try:
            status = self._process.wait(limit)
            self._close()
            return status
        except subprocess.TimeoutExpired:
            self.stop(signal.SIGKILL)
            raise Failure(f"has not ended in {limit} s") from None

    def prints(self, text, limit):
        """Waits until the output holds a text."""
        with self._changed:
            end = time.monotonic() + limit
            while text not in self.output:
                self._changed.wait(0.1)
                if text not in self.output and self._process.poll() is not None and not self._reader.is_alive():
                    raise Failure(f"has ended with status {self._process.returncode} before it printed \"{text}\"")
                if time.monotonic() > end:
                    raise Failure(f"has not printed \"{text}\" in {limit} s")

    def _close(self):
        # What it has started in the background may hold the pipe open.
        self._reader.join(5)
        self._process.stdin.close()
        if not self._reader.is_alive():
            self._process.stdout.close()

    def stop(self, number=signal.SIGINT):
        """Ends it as Ctrl-C does; a program that leaves that to the system ends by the signal."""
        if self._process.poll() is None:
            os.killpg(self._process.pid, number)
        try:
            status = self._process.wait(10)
        except subprocess.TimeoutExpired:
            os.killpg(self._process.pid, signal.SIGKILL)
            status = self._process.wait()
        self._close()
        if number == signal.SIGINT and status not in (0, -signal.SIGINT, 128 + signal.SIGINT):
            raise Failure(f"ends on Ctrl-C with status {status}")


class Place:
    """The copy of the project in which commands run."""

    def __init__(self, root, build):
        self.build = pathlib.Path(build).resolve()
        self.folder = self.build / "docs-commands" / "project"
        shutil.rmtree(self.folder.parent, ignore_errors=True)
        # Without what an earlier command has left in the folder, such as a recording, and git ignores.
        for name in names.files(root):
            (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(pathlib.Path(root) / name, self.folder / name, follow_symlinks=False)
        (self.folder / "build").mkdir()
        (self.folder / "build/dev").symlink_to(self.build)
        self.environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", QT_QUICK_BACKEND="software",
                                PATH=f"{self.build / 'bin'}:{os.environ['PATH']}")
        self.environment.pop("DISPLAY", None)
        if shutil.which("ccache"):
            self.environment.setdefault("CMAKE_CXX_COMPILER_LAUNCHER", "ccache")

    def here(self, text):
        """A command with what lies outside of the project moved into the copy's folder."""
        for name, inside in OUTSIDE.items():
            text = re.sub(re.escape(name) + r"\b", str(self.folder.parent / inside), text)
        return text


class DocumentRun:
    """The commands of one document, one after the other."""

    def __init__(self, document, how, place, whole):
        before = [shell.Command(document.name, 0, 0, text) for text in how.before(document.name)]
        self.commands = before + shell.of_document(document)
        self._plan = how
        self._place = place
        self._whole = whole
        self._folder = place.folder / pathlib.Path(document.name).parent
        if document.name.startswith("docs/"):
            self._folder = place.folder
        self._exports = ""
        self._background = []
        for name, source in how.given.get(document.name, []):
            shutil.copy(place.folder / source, self._folder / name)

    def run(self):
        """Prints each command with what came of it; whether all did what they are shown for."""
        good = True
        try:
            for command in self.commands:
                good = self._told(command) and good
        finally:
            for running in self._background:
                good = self._attempt("ends on Ctrl-C", running.stop) and good
        return good

    def _told(self, command):
        how = self._plan.of(command)
        if not how and claims.OWN_SCRIPTS.match(command.text):
            print(f"FAILED: {command.document}:{command.line}: {command.text}\n        nobody runs it", flush=True)
            return False
        text, how = self._effective(command.text, how)
        if text is None:
            print(f"   elsewhere: {command.text.splitlines()[0]} ({how})", flush=True)
            return True
        start = time.monotonic()
        good = self._attempt(f"{command.document}:{command.line}: {command.text}", self._carry_out, text, how)
        if good:
            print(f"{time.monotonic() - start:5.1f} s  ran: {command.text.splitlines()[0]}", flush=True)
        return good

    def _effective(self, text, how):
        """What is run for a command, and how; nothing for one that somebody else runs."""
        if how.startswith("long"):
            stand_in = how.partition(": ")[2]
            return (text, "") if self._whole else (stand_in or None, "" if stand_in else how)
        program = how.removeprefix("needs ") if how.startswith("needs ") else None
        if program:
            required = os.environ.get("CANBUS_REQUIRE_PROGRAMS")
            return (text, "") if required or shutil.which(program) else (None, how)
        if how and not how.startswith(("until ", "background ")):
            return None, how
        return text, how

    @staticmethod
    def _attempt(what, action, *arguments):
        try:
            action(*arguments)
            return True
        except Failure as failure:
            print(f"FAILED: {what}\n        {failure}", flush=True)
            return False

    def _carry_out(self, text, how):
        if text.startswith("export "):
            self._exports += text + "\n"
        running = Running(self._exports + self._place.here(text), self._folder, self._place.environment)
        if not how:
            status = running.ended(WHOLE_LIMIT if self._whole else LIMIT)
            if status != 0:
                raise Failure(f"ends with status {status}:\n{running.output[-2000:]}")
            return
        kind, _, shown = how.partition("until ")
        try:
            running.prints(shown, LIMIT)
        except Failure as failure:
            running.stop(signal.SIGKILL)
            raise Failure(f"{failure}:\n{running.output[-2000:]}") from None
        if kind:
            self._background.insert(0, running)
        else:
            running.stop()


def main():
    """Runs what is asked for; the status tells whether all of it did what it is shown for."""
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("root")
    parser.add_argument("build")
    parser.add_argument("--only", help="the commands of one document")
    parser.add_argument("--whole", action="store_true", help="also those that take minutes")
    arguments = parser.parse_args()
    how = plan.read(HERE / "commands.txt")
    place = Place(pathlib.Path(arguments.root).resolve(), arguments.build)
    good = True
    for document in markdown.documents(place.folder):
        if arguments.only not in (None, document.name):
            continue
        good = DocumentRun(document, how, place, arguments.whole).run() and good
    print("commands: passed" if good else "commands: FAILED")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
