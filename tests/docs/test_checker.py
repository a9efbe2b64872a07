#!/usr/bin/env python3
"""The checks of the documents find what they are for, in small trees made for it."""

import contextlib
import io
import pathlib
import re
import signal
import tempfile
import unittest

import claims
import diagrams
import form
import includes
import links
import markdown
import names
import performance
import plan
import run
import shell
import structure


class TreeTest(unittest.TestCase):
    """A test with a folder of its own, in which it writes a small project."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()

    def write(self, name, text, executable=False):
        """A file of the project."""
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        if executable:
            path.chmod(0o755)

    def documents(self):
        """The documents of the project."""
        return markdown.documents(self.root)


class Links(TreeTest):
    """Links, headings, images."""

    def findings(self, text):
        self.write("docs/page.md", text)
        return links.check(self.root, self.documents())

    def test_takes_what_is_there(self):
        self.write("src/a.h", "")
        self.write("other.md", "# A `name()`, and more\n\n# Twice\n\n# Twice\n")
        self.assertEqual(self.findings("[a](../src/a.h) [b](../other.md#a-name-and-more) [c](../other.md#twice-1) "
                                       "[d](https://example.org/x?y=1)"), [])

    def test_finds_a_file_that_is_missing(self):
        self.assertEqual(self.findings("text\n[a](missing.md)"), ["docs/page.md:2: missing.md: is not there"])

    def test_finds_a_heading_that_is_missing(self):
        self.assertEqual(self.findings("# Here\n[a](#there)"), ["docs/page.md:2: #there: has no heading for #there"])

    def test_finds_a_link_out_of_the_project(self):
        self.assertIn("leads out of the project", self.findings("[a](../../elsewhere)")[0])
        self.assertIn("leads out of the project", self.findings("[a](/etc/passwd)")[0])

    def test_finds_an_image_that_is_missing_or_says_nothing(self):
        self.write("docs/a.png", "")
        self.assertIn("is not there", self.findings("![a](b.png)")[0])
        self.assertIn("without a text", self.findings("![](a.png)")[0])

    def test_finds_an_address_that_is_none(self):
        self.assertIn("no well-formed address", self.findings("[a](https://nowhere)")[0])

    def test_looks_for_no_link_in_code(self):
        self.assertEqual(self.findings("`[a](b.md)`\n\n```text\n[a](b.md)\n```\n"), [])


class Names(TreeTest):
    """Names in backticks."""

    def setUp(self):
        super().setUp()
        self.write("src/link/queue.h", "// only mentioned: GoneQueue\nclass SendQueue { void restart(); };\n")
        self.write("src/link/other.h", "class Other { void elsewhere(); };\n")
        self.write("CMakeLists.txt", "option(CANBUS_BUILD_TOOLS)\n")

    def unknown(self, span):
        return names.unknown(span, names.Vocabulary(self.root))

    def test_knows_what_the_sources_have(self):
        for span in ("SendQueue", "SendQueue::restart()", "restart()", "CANBUS_BUILD_TOOLS", "src/link", "queue.h",
                     "src/link/queue.h", "Send*", "build/dev/lib", "9F 02", "0x21", "/dev/ttyS3"):
            self.assertEqual(self.unknown(span), [], span)

    def test_finds_names_that_are_not_there(self):
        for span in ("TakeQueue", "takeQueue()", "CANBUS_BUILD_CARS", "src/line", "line.h", "src/link/line.h", "Take*",
                     "GoneQueue"):
            self.assertNotEqual(self.unknown(span), [], span)

    def test_knows_names_with_dots(self):
        self.write("scenarios/scenario.schema.json", '{"a": {"climate.mainTemp": {}}, "b": ["climate.acBtn", "climate.door"]}')
        self.write("qml/plugins.qmltypes", 'Module {\n    Component {\n        exports: ["CanBus/ClimateState 1.0"]\n'
                   '        Property { name: "mainTemp"; type: "int" }\n    }\n}\n')
        self.write("tools/wireshark/canbus.lua", "bad_check = 1")
        for span in ("climate.mainTemp", "climate.mainTemp=215", "climate.acBtn", "climate.door.1", "climate.*",
                     "ClimateState.mainTemp", "canbus.bad_check", "canbus.climate.mainTemp", "canbus.climate.*", "default.debug"):
            self.assertEqual(self.unknown(span), [], span)
        for span in ("climate.mainTempp", "climate.mainTempp=215", "climate.acBttn", "ClimateState.mainTempp",
                     "canbus.good_check", "canbus.climate.mainTempp", "climate.doors.1"):
            self.assertNotEqual(self.unknown(span), [], span)

    def test_knows_what_a_class_takes_from_its_base(self):
        self.write("src/link/more.h", "class More : public SendQueue { enum Kind { First }; };\n")
        self.assertEqual(self.unknown("More::restart()"), [])
        self.assertEqual(self.unknown("Kind::First"), [])
        self.assertEqual(self.unknown("SendQueue::First"), ["SendQueue::First"])

    def test_finds_a_member_that_a_class_only_calls(self):
        self.write("src/link/caller.h", "class Caller { void go() { if (elsewhere()) { elsewhere(); } } };\n")
        self.assertEqual(self.unknown("Caller::go()"), [])
        self.assertEqual(self.unknown("Caller::elsewhere()"), ["Caller::elsewhere"])

    def test_finds_a_member_that_another_class_has(self):
        self.assertEqual(self.unknown("SendQueue::elsewhere()"), ["SendQueue::elsewhere"])

    def test_tells_exceptions_that_nobody_needs(self):
        self.write("page.md", "`made.trace`\n")
        self.assertEqual(names.check(self.root, self.documents(), {"made.trace": "a reason"}), [])
        self.assertIn("no document names gone", names.check(self.root, self.documents(), {"made.trace": "a", "gone": "b"})[0])

    def test_looks_into_the_drawings(self):
        self.write("docs/diagrams/a.dot", 'a [label="SendQueue::restart()"]\nb [label="SendQueue::pause()"]\n')
        self.assertEqual(names.check(self.root, self.documents(), {}),
                         ["a.dot:2: SendQueue::pause(): there is no SendQueue::pause"])


class Commands(TreeTest):
    """Who runs a command, and what it names."""

    def setUp(self):
        super().setUp()
        self.write("dev", "#!/bin/sh\necho '  test            runs\n  fuzz [--target NAME]\n                  feeds'\n", True)
        self.write(".ci/run", "every_test() { ./dev test | tee log; }\nstage test every_test\nstage fuzz ./dev fuzz 60\n")
        self.write("CMakePresets.json", '{"name": "dev"}')
        self.write("run.sh", "--hours")
        self.write("docs/there.1", "")

    def findings(self, text, table=""):
        self.write("page.md", text)
        self.write("commands", table)
        return claims.check(self.documents(), plan.read(self.root / "commands"), claims.Tree(self.root))

    def test_finds_a_command_that_no_one_runs(self):
        self.assertIn("nobody runs it", self.findings("```sh\n./dev test\n```\n")[0])

    def test_takes_a_stage_that_runs_it(self):
        self.assertEqual(self.findings("```sh\n./dev test\n```\n", "page.md | ./dev test | stage test"), [])
        self.assertEqual(self.findings("```sh\n./dev fuzz\n```\n", "page.md | ./dev fuzz | stage fuzz"), [])

    def test_finds_a_claim_that_is_not_true(self):
        text = "```sh\n./dev test\n```\n"
        self.assertIn("has no stage none", self.findings(text, "page.md | ./dev test | stage none")[0])
        self.assertIn("runs something else", self.findings(text, "page.md | ./dev test | stage fuzz")[0])
        self.assertIn("there is no test t", self.findings(text, "page.md | ./dev test | ctest t in run.sh")[0])

    def test_finds_a_line_of_the_table_that_nothing_needs(self):
        self.assertIn("no document has this command", self.findings("", "page.md | ./dev test | stage test")[0])

    def test_finds_what_a_command_names_in_vain(self):
        for span, what in (("./dev tests", "no command tests"), ("./dev fuzz --long", "no option --long"),
                           ("./dev fuzz --targ x", "no option --targ"), ("./dev fuzz everything", "knows no everything"),
                           ("man -l docs/nope.1", "there is no docs/nope.1"), ("gdb -x docs/nope.py", "there is no docs/nope.py"),
                           ("run.sh --days 3", ""), ("./run.sh --days 3", "no option --days"),
                           ("tests/gone.sh 3", "no script"), ("cmake --preset fast", "no preset fast"),
                           ("cmake -S . -DCANBUS_CARS=ON", "no option CANBUS_CARS"), ("ctest --never x", "no option --never"),
                           ("CANBUS_CARS=1 ./dev test", "nothing reads CANBUS_CARS")):
            found = self.findings(f"`{span}`\n")
            self.assertTrue(what in found[0] if what else found == [], f"{span}: {found}")
        self.assertEqual(self.findings("`./dev fuzz --target NAME`, `./run.sh --hours 2`, `cmake --preset dev`"), [])

    def test_finds_a_stage_that_the_list_lacks(self):
        self.write("docs/testing.md", "`lint`\n")
        self.assertEqual(self.findings(""), ["docs/testing.md: does not say that .ci/run runs `fuzz 60`"])
        self.write("docs/testing.md", "`fuzz 60`\n")
        self.assertEqual(self.findings(""), [])

    def test_refuses_a_table_that_says_nothing(self):
        for line in ("page.md | ./dev test", "page.md | ./dev test | sometimes", "page.md | ./dev test | by hand:"):
            with self.assertRaises(ValueError, msg=line):
                self.findings("", line)

    def test_reads_commands_as_a_shell_does(self):
        block = markdown.Block(1, "a  b \\\n    c   # why\n# nothing\ncat >x <<'END'\n# text\nEND\nd\n", "sh")
        self.assertEqual([command.text for command in shell.of_block("page.md", block)],
                         ["a b c", "cat >x <<'END'\n# text\nEND", "d"])


class Runs(TreeTest):
    """Commands that are run."""

    def good(self, text, table=""):
        self.write("project/page.md", f"```sh\n{text}\n```\n")
        self.write("commands", table)
        place = run.Place(self.root / "project", self.root / "build")
        document = markdown.documents(place.folder)[0]
        with contextlib.redirect_stdout(io.StringIO()) as told:
            good = run.DocumentRun(document, plan.read(self.root / "commands"), place, False).run()
        self.told = told.getvalue()
        return good

    def test_tells_a_command_that_fails(self):
        self.assertTrue(self.good("true\ntest -f page.md"))
        self.assertFalse(self.good("true\ntest -f missing.md"))
        self.assertIn("page.md:3: test -f missing.md", self.told)

    def test_keeps_what_is_exported(self):
        self.assertTrue(self.good("export A=1\ntest $A = 1"))

    def test_waits_for_what_a_command_prints(self):
        self.assertTrue(self.good("echo ready; sleep 60", "page.md | echo ready; sleep 60 | until ready"))
        self.assertFalse(self.good("echo never", "page.md | echo never | until ready"))
        self.assertIn("before it printed", self.told)

    def test_tells_a_command_that_does_not_end_well_on_ctrl_c(self):
        stubborn = "trap 'exit 3' INT; echo ready; sleep 60 & wait"
        self.assertFalse(self.good(stubborn, f"page.md | {stubborn} | background until ready"))
        self.assertIn("ends on Ctrl-C with status 3", self.told)

    def test_ends_a_command_also_where_ctrl_c_is_ignored(self):
        before = signal.signal(signal.SIGINT, signal.SIG_IGN)
        self.addCleanup(signal.signal, signal.SIGINT, before)
        self.assertTrue(self.good("echo ready; sleep 60", "page.md | echo ready; sleep 60 | until ready"))

    def test_runs_no_script_of_the_project_by_itself(self):
        self.assertFalse(self.good("./dev test"))


class Drawings(TreeTest):
    """The drawing of the structure, and the committed pictures."""

    def setUp(self):
        super().setUp()
        self.write("src/link/link.h", "#include <QtCore/QObject>\n")
        self.write("src/player/player.cpp", '#include "link/link.h"\n')

    def findings(self, arrows, page=""):
        self.write("docs/architecture.md", page)
        self.write("docs/diagrams/structure.dot",
                   f'digraph a {{\n    core [comment="QtCore: link"]\n    both [comment="serial player"]\n{arrows}\n}}\n')
        return structure.check(self.root)

    def test_takes_arrows_that_are_includes(self):
        self.assertEqual(self.findings("    player -> link [style=dashed]"), [])

    def test_finds_an_include_that_is_not_drawn(self):
        self.assertEqual(self.findings(""), ["structure.dot: player includes link, and no arrow says so"])

    def test_finds_an_arrow_that_is_no_include(self):
        self.assertIn("structure.dot: an arrow says that link includes player, and link has no part in it",
                      self.findings("    player -> link [dir=both, style=dashed]"))

    def test_finds_a_part_of_a_frame_that_has_no_such_include(self):
        self.assertEqual(self.findings("    both -> link [style=dashed]"),
                         ["structure.dot: an arrow says that both includes link, and serial has no part in it"])

    def test_finds_an_arrow_of_the_wrong_kind(self):
        self.assertIn("the arrow is not dashed", self.findings("    player -> link")[0])
        self.write("src/player/player.h", '#include "link/link.h"\n')
        self.assertIn("the arrow is dashed", self.findings("    player -> link [style=dashed]")[0])

    def test_finds_a_product_that_is_drawn_wrong(self):
        self.write("src/player/other.cpp", "#include <QtCore/QTimer>\n#include <rapidjson/reader.h>\n")
        found = self.findings("    player -> link [style=dashed]")
        self.assertEqual(len(found), 2, found)

    def test_finds_the_header_beside_a_source_first(self):
        self.write("boxsim/link/link.h", "")
        self.write("boxsim/link/box.cpp", '#include "link.h"\n')
        self.assertNotIn(("boxsim", "link"), includes.edges(self.root))

    def test_finds_a_folder_of_the_box_that_looks_down(self):
        self.write("boxsim/line/line.h", '#include "boxsim/bench/bench.h"\n')
        self.write("boxsim/bench/bench.h", '#include "boxsim/line/line.h"\n')
        rows = "| `boxsim/line` | a |\n| `boxsim/bench` | b |\n"
        self.assertEqual(self.findings("    player -> link [style=dashed]", rows),
                         ["boxsim/line includes boxsim/bench, which is below it in architecture.md"])
        self.assertIn("boxsim/bench is in no row of architecture.md",
                      self.findings("    player -> link [style=dashed]", "| `boxsim/line` | a |\n"))

    def test_tells_pictures_apart_by_what_they_show(self):
        svg = ('<svg xmlns="http://www.w3.org/2000/svg"><g class="node"><title>{0}</title>'
               '<text x="{1}">{2}</text></g></svg>').format
        self.assertEqual(diagrams.content(svg("a", 1, "A")), diagrams.content(svg("a", 2, "A")))
        self.assertNotEqual(diagrams.content(svg("a", 1, "A")), diagrams.content(svg("b", 1, "A")))
        self.assertNotEqual(diagrams.content(svg("a", 1, "A")), diagrams.content(svg("a", 1, "B")))

    def test_finds_a_source_without_a_picture(self):
        self.write("docs/diagrams/a.dot", "digraph a {}")
        self.assertEqual(diagrams.check(self.root), ["a.dot: there is no a.svg"])


class Form(TreeTest):
    """The common form."""

    def findings(self, text):
        self.write("docs/page.md", text)
        return form.check(self.documents())

    def test_takes_a_document_in_form(self):
        self.assertEqual(self.findings("# Page\n\nWhat it is. For people who\nread.\n\n- a\n\n    b\n\n```sh\nls\n```\n"), [])

    def test_finds_an_opening_that_does_not_say_for_whom(self):
        self.assertIn("for whom", self.findings("# Page\n\nWhat it is.\n\nFor people who read.\n")[0])
        self.assertIn("with its title", self.findings("Page\n\nFor people who read.\n")[0])

    def test_finds_blocks_that_are_shown_otherwise(self):
        start = "# Page\n\nFor who reads.\n\n"
        self.assertIn("page.md:5: a block without a language", self.findings(start + "```\nls\n```\n")[0])
        self.assertIn("page.md:5: a block is fenced", self.findings(start + "    ls\n")[0])
        self.assertIn("without a prompt", self.findings(start + "```sh\n$ ls\n```\n")[0])


class Figures(unittest.TestCase):
    """The figures of the benches."""

    def test_tells_figures_apart_that_the_baseline_would_not_let_pass(self):
        for written, expected, is_different in (("1,040 instr.", "1,000 instr.", False), ("1,060 instr.", "1,000 instr.", True),
                                                ("0", "0", False), ("1", "0", True), ("", "", False), ("", "5", True)):
            self.assertEqual(performance.differ(written, expected), is_different, (written, expected))

    def test_finds_a_row_that_has_moved(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(__file__).resolve().parents[2]
            (pathlib.Path(folder) / "bench").symlink_to(root / "bench")
            (pathlib.Path(folder) / "docs").mkdir()
            page = (root / "docs/performance.md").read_text(encoding="utf-8")
            copy = pathlib.Path(folder) / "docs/performance.md"
            copy.write_text(page, encoding="utf-8")
            self.assertEqual(performance.check(folder), [])
            copy.write_text(re.sub(r"(\| an idle tick \| )\d+", r"\g<1>999", page.replace("| at most 400 instr.", "| at most 401 instr.")),
                            encoding="utf-8")
            self.assertEqual(len(performance.check(folder)), 4)


class Blocks(TreeTest):
    """Blocks of documents."""

    def test_refuses_a_block_without_an_end(self):
        self.write("page.md", "```sh\ntrue\n")
        with self.assertRaisesRegex(ValueError, "page.md:1: the fenced block has no end"):
            self.documents()

    def test_takes_blocks_within_lists(self):
        self.write("page.md", "1. first\n\n   ```sh\n   true\n   ```\n")
        self.assertEqual(self.documents()[0].blocks, [markdown.Block(4, "true\n", "sh")])


if __name__ == "__main__":
    unittest.main()
