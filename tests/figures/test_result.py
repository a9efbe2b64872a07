#!/usr/bin/env python3
"""What a proof leaves behind: docs/figures/result.py."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "docs" / "figures"))

import result  # noqa: E402


class Results(unittest.TestCase):
    """What result.py leaves behind."""

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.results = self.folder / "build" / "results"
        self.git("init", "-q")
        (self.folder / "code.cpp").write_text("int one = 1;\n")
        (self.folder / ".gitignore").write_text("/build/\n")
        (self.folder / "README.md").write_text("figures\n")
        self.commit()

    def git(self, *arguments):
        who = ["-c", "user.name=Test", "-c", "user.email=test@localhost"]
        command = ["git", "-C", str(self.folder), *who, *arguments]
        done = subprocess.run(command, check=True, capture_output=True, text=True)
        return done.stdout.strip()

    def commit(self):
        self.git("add", "-A")
        self.git("commit", "-q", "--allow-empty", "-m", "A commit")

    def begin(self):
        result.begin(self.folder, self.results, "hours")

    def end(self, status=0, texts=(), junit=()):
        result.end(self.folder, self.results, "hours", status, texts, junit)

    def left(self):
        return json.loads((self.results / "hours.json").read_text())

    def test_a_run_that_is_killed_stays_unfinished(self):
        self.begin()
        left = self.left()
        self.assertEqual(left["outcome"], "unfinished")
        self.assertRegex(left["begun"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\+00:00$")
        self.assertEqual(left["commit"], self.git("rev-parse", "--short=10", "HEAD"))
        self.assertEqual(len(left["commit"]), 10)
        self.assertTrue(left["clean"])

    def test_has_outcome_and_figures_when_it_ends(self):
        self.begin()
        begun = self.left()
        self.end(0, ["hours=24", "findings.stream=2", "missed=[\"a\"]", "instrument=--asan", "wanted="])
        self.assertEqual(self.left(), {**begun, "outcome": "passed", "hours": 24, "findings": {"stream": 2},
                                       "missed": ["a"], "instrument": "--asan"})

    def test_a_status_is_a_failure(self):
        self.begin()
        self.end(3)
        self.assertEqual(self.left()["outcome"], "failed")

    def test_what_is_no_figure_is_refused(self):
        self.begin()
        for text in ("hours", "=1", "a..b=1"):
            with self.subTest(text), self.assertRaisesRegex(ValueError, "is not KEY=VALUE"):
                self.end(0, [text])

    def test_a_changed_file_makes_the_tree_another(self):
        (self.folder / "code.cpp").write_text("int one = 2;\n")
        self.begin()
        self.assertFalse(self.left()["clean"])

    def test_a_new_file_makes_the_tree_another(self):
        (self.folder / "more.cpp").write_text("int two = 2;\n")
        self.begin()
        self.assertFalse(self.left()["clean"])

    def test_renewed_figures_leave_the_tree_what_it_is(self):
        (self.folder / "README.md").write_text("other figures\n")
        self.begin()
        self.assertTrue(self.left()["clean"])

    def test_a_change_during_the_run_counts(self):
        self.begin()
        (self.folder / "code.cpp").write_text("int one = 2;\n")
        self.end()
        self.assertFalse(self.left()["clean"])

    def test_a_commit_during_the_run_counts(self):
        self.begin()
        begun = self.left()["commit"]
        self.commit()
        self.end()
        self.assertEqual((self.left()["commit"], self.left()["clean"]), (begun, False))

    def test_without_a_checkout_the_commit_is_unknown(self):
        with tempfile.TemporaryDirectory() as elsewhere:
            self.assertEqual(result.state(pathlib.Path(elsewhere)), {"commit": "unknown", "clean": False})

    def test_counts_tests_as_ctest_tells_them(self):
        self.begin()
        first, second = self.folder / "build" / "first.xml", self.folder / "build" / "second.xml"
        first.write_text("""<testsuite>
            <testcase name="good" status="run"/>
            <testcase name="bad" status="fail"><failure message=""/></testcase>
            <testcase name="absent" status="notrun"><skipped message="SKIP_RETURN_CODE=77"/></testcase>
            </testsuite>""")
        second.write_text('<testsuite><testcase name="also good" status="run"/></testsuite>')
        self.end(1, junit=[first, second])
        left = self.left()
        self.assertEqual((left["tests"], left["skipped"], left["failed"]), (4, 1, ["bad"]))


class Command(unittest.TestCase):
    """The command itself."""

    def status(self, *arguments):
        command = str(ROOT / "docs" / "figures" / "result.py")
        done = subprocess.run([command, *arguments], capture_output=True, text=True, check=False)
        return done.returncode, done.stderr

    def test_a_status_that_is_no_number_is_a_wrong_argument(self):
        self.assertEqual(self.status("end", "hours", "good")[0], 2)

    def test_the_end_of_a_run_that_has_not_begun_is_told(self):
        status, said = self.status("end", "never-begun", "0")
        self.assertEqual(status, 1)
        self.assertIn("figures: the result of never-begun is not left behind", said)


if __name__ == "__main__":
    unittest.main()
