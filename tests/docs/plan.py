"""commands.txt: how each command of the documents is run that is not run just as it stands.

    DOCUMENT | COMMAND | until TEXT                  run until it prints TEXT, and ended with Ctrl-C
    DOCUMENT | COMMAND | background until TEXT       the same, but left running for the commands that follow
    DOCUMENT | COMMAND | long                        run by the whole run alone, which continuous integration makes
    DOCUMENT | COMMAND | long: COMMAND               the same, and elsewhere this one in its place
    DOCUMENT | COMMAND | stage NAME                  run by this stage of .ci/run
    DOCUMENT | COMMAND | ctest NAME in FILE          run by this test: the command stands in FILE
    DOCUMENT | COMMAND | needs PROGRAM               run where it is installed, or CANBUS_REQUIRE_PROGRAMS is set
    DOCUMENT | COMMAND | by hand: REASON             run by nobody else
    DOCUMENT | before: COMMAND | ...                 no command of the document: what a reader has done by then
    DOCUMENT | FILE = SOURCE                         no command: a file that a reader has by then
"""

import dataclasses
import pathlib

import shell


@dataclasses.dataclass
class Plan:
    """The table, by document and command; what comes before a document's commands, and the files given to them."""

    how: dict
    prepared: dict
    given: dict

    def of(self, command):
        """How a command is run: as it stands, where nothing is said."""
        key = command.document, command.text
        return self.how.get(key) or self.prepared.get(key, "")

    def before(self, document):
        """The commands that come before those of the document."""
        return [text for name, text in self.prepared if name == document]


def read(path):
    """The plan of a file; a line that is none is told."""
    plan = Plan({}, {}, {})
    for number, line in enumerate(pathlib.Path(path).read_text(encoding="utf-8").splitlines(), 1):
        if not line.strip() or line.startswith("#"):
            continue
        parts = [part.strip() for part in line.split(" | ")]
        if len(parts) == 2 and " = " in parts[1]:
            plan.given.setdefault(parts[0], []).append(tuple(parts[1].split(" = ")))
        elif len(parts) == 3 and is_way(parts[2]):
            text = parts[1].removeprefix("before: ")
            commands = plan.how if text == parts[1] else plan.prepared
            commands[parts[0], shell.normal(text)] = parts[2]
        else:
            raise ValueError(f"{path}:{number}: is no DOCUMENT | COMMAND | HOW")
    return plan


def is_way(how):
    """Whether this is a way to run a command."""
    first, _, rest = how.partition(" ")
    if first == "long" or first == "long:":
        return bool(rest) == first.endswith(":")
    return bool(rest) and (first in ("until", "stage", "needs") or how.startswith(("background until ", "by hand: "))
                           or first == "ctest" and " in " in rest)
