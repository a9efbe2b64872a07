"""docs/api/check.py finds what a comment leaves out, and docs/api/threads.py tells an operation its class's thread.

Doxygen reads a small header with the project's own settings.
"""

from __future__ import annotations

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "docs" / "api"))

import check  # noqa: E402
import pages  # noqa: E402
import threads  # noqa: E402


SAYS = "@thread{The main thread.} @emitted{The port's thread.}"


def gaps_in(declarations: str, class_says: str = SAYS) -> list[str]:
    header = f"/// A class.\n/// {class_says}\nclass Sample : public QObject {{\npublic:\n{declarations}\n}};\n"
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        (folder / "sample.h").write_text(header)
        settings = (ROOT / "docs/api/Doxyfile").read_text()
        settings += f'INPUT = "{folder}/sample.h"\nOUTPUT_DIRECTORY = "{folder}"\nUSE_MDFILE_AS_MAINPAGE =\n'
        settings += "WARNINGS = NO\nGENERATE_HTML = NO\nWARN_AS_ERROR = NO\n"
        subprocess.run(["doxygen", "-"], input=settings, text=True, cwd=ROOT, check=True, capture_output=True)
        members = list(check.operations(folder / "xml"))
        return [f"{member.findtext('name')} {gap}" for member in members for gap in check.gaps(member)]


class Gaps(unittest.TestCase):
    def test_a_complete_comment_has_none(self) -> None:
        comment = "/// Opens.\n/// @param rate  bits per second\n/// @return whether\n"
        self.assertEqual(gaps_in(comment + "bool open(int rate);"), [])

    def test_an_operation_without_a_comment(self) -> None:
        self.assertEqual(gaps_in("void open();"), ["open has no comment"])

    def test_an_argument_that_is_not_told(self) -> None:
        for access in ("public:", "public Q_SLOTS:", "Q_SIGNALS:"):
            with self.subTest(access):
                found = gaps_in(f"{access}\n/// Opens.\nvoid open(int rate);")
                self.assertEqual(found, ["open does not say what rate is"])

    def test_a_result_that_is_not_told(self) -> None:
        self.assertEqual(gaps_in("/// Opens.\nbool open();"), ["open does not say what it returns"])

    def test_a_class_that_names_no_thread(self) -> None:
        self.assertEqual(gaps_in("/// Opens.\nvoid open();", ""), ['open names no thread: "@thread{...}"'])

    def test_a_signal_needs_the_thread_that_it_is_emitted_on(self) -> None:
        found = gaps_in("Q_SIGNALS:\n/// Came.\nvoid came();", "@thread{The main thread.}")
        self.assertEqual(found, ['came does not say where it is emitted: "@emitted{...}"'])

    def test_a_private_operation_needs_nothing(self) -> None:
        self.assertEqual(gaps_in("private:\nvoid open(int rate);"), [])


class Threads(unittest.TestCase):
    def told(self, text: str) -> str:
        return "\n".join(threads.Header(text.split("\n")).told())

    def assert_told(self, text: str, line: str) -> None:
        self.assertIn(line, self.told(text).split("\n"))

    def test_an_operation_says_what_its_class_says(self) -> None:
        text = "/// @thread{Main.}\nclass A {\npublic:\n    /// Opens.\n    void open();\n};"
        self.assert_told(text, "    /// Opens. @thread{Main.}")

    def test_what_an_operation_says_itself_counts(self) -> None:
        text = "/// @thread{Main.}\nclass A {\npublic:\n    /// Opens. @thread{Any.}\n    void open();\n};"
        self.assertEqual(self.told(text), text)

    def test_a_signal_says_where_it_is_emitted(self) -> None:
        text = "/// @thread{Main.} @emitted{Port's.}\nclass A {\nQ_SIGNALS:\n    /// Came.\n    void came();\n};"
        self.assert_told(text, "    /// Came. @emitted{Port's.}")

    def test_a_class_within_a_class_says_nothing_for_the_outer_one(self) -> None:
        inner = "    /// @thread{Any.}\n    struct B {\n    };\n"
        text = "/// @thread{Main.}\nclass A {\npublic:\n" + inner + "    /// Opens.\n    void open();\n};"
        self.assert_told(text, "    /// Opens. @thread{Main.}")

    def test_what_follows_the_class_says_nothing(self) -> None:
        text = "/// @thread{Main.}\nclass A {\n};\n/// Opens.\nvoid open();"
        self.assertEqual(self.told(text), text)


class Coverage(unittest.TestCase):
    def test_a_header_that_is_installed_and_not_read(self) -> None:
        with tempfile.TemporaryDirectory() as name:
            index = "<doxygenindex><compound kind='file'><name>serialport.h</name></compound></doxygenindex>"
            (Path(name) / "index.xml").write_text(index)
            found = list(check.missing_headers(ROOT, Path(name)))
        self.assertIn("canbusplayer.h is installed, and not in INPUT of docs/api/Doxyfile", found)
        self.assertFalse([line for line in found if line.startswith("serialport.h")])

    def test_a_property_that_the_page_does_not_tell(self) -> None:
        with tempfile.TemporaryDirectory() as name:
            root = Path(name)
            for file in ("docs/qml.md", "qml/plugins.qmltypes"):
                (root / file).parent.mkdir()
                (root / file).write_text((ROOT / file).read_text().replace("| `title` | string | | \"\" |\n", ""))
            found = list(check.missing_properties(root))
        self.assertIn("docs/qml.md: ClimateState has the property title, which is not told", found)

    def test_links_to_documents_outside_become_their_text(self) -> None:
        self.assertEqual(pages.page("see [integration.md](integration.md#start), [QML](../qml.md)"),
                         "see integration.md, [QML](../qml.md)")


if __name__ == "__main__":
    unittest.main()
