#!/usr/bin/env python3
"""The figures of README.md, made from sample results: docs/figures."""
import contextlib
import io
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "docs" / "figures"))

import figures  # noqa: E402

EARLIER, LATER = "2026-03-04T23:59:00+00:00", "2026-03-05T10:00:00+00:00"
TESTS = {"tests": 1220, "skipped": 0, "failed": []}


def passed(begun=EARLIER, **numbers):
    return {"outcome": "passed", "begun": begun, "commit": "0123456789", "clean": True, **numbers}


def failed(begun=EARLIER, **numbers):
    return {**passed(begun, **numbers), "outcome": "failed"}


def unfinished(begun):
    return {"outcome": "unfinished", "begun": begun, "commit": "abcdefabcd", "clean": False}


def simulated(begun, seeds):
    return passed(begun, wanted=seeds, seeds=seeds, broken=0)


def fuzzed(begun, **executions):
    return passed(begun, executions=executions, findings=dict.fromkeys(executions, 0), seconds=60)


def covered(core_taken):
    return {"core": {"taken": core_taken, "branches": 300}, "src": {"taken": 991, "branches": 1025}}


def merged(old, left):
    return figures.merge(old, left)[0]


class Rows(unittest.TestCase):
    """What a result looks like in README.md."""

    samples = {
        "every test has passed": (
            "test", passed(**TESTS), "| tests | all 1,220 tests passed | `./dev test` | 2026-03-04, `0123456789` |"),
        "a skipped test is told": (
            "test", passed(tests=20, skipped=1, failed=[]),
            "| tests | 19 tests passed, 1 skipped | `./dev test` | 2026-03-04, `0123456789` |"),
        "emulated tests": (
            "cross-armhf", passed(**TESTS), "| tests on armhf, emulated | all 1,220 tests passed | "
            "`./dev cross armhf` | 2026-03-04, `0123456789` |"),
        "a failure stands out, with its name": (
            "test", failed(tests=20, skipped=0, failed=["tst_text"]),
            "| tests | **FAILED**: 19 tests passed, 1 failed: tst_text | `./dev test` | 2026-03-04, `0123456789` |"),
        "a run with changed files belongs to no commit alone": (
            "test", {**passed(**TESTS), "clean": False},
            "| tests | all 1,220 tests passed | `./dev test` | 2026-03-04, `0123456789` with changes |"),
        "nothing was counted": (
            "coverage", failed(), "| branch coverage | **FAILED**: broke off before it had counted anything | "
            "`./dev coverage` | 2026-03-04, `0123456789` |"),
        "a part is rounded down, and 100 % is all": (
            "coverage", passed(**covered(300)), "| branch coverage | 96.6 % of 1,025 branches of `src/` taken, "
            "100.0 % in the receive path, the send queue and the decoders | `./dev coverage` | "
            "2026-03-04, `0123456789` |"),
        "one branch less is not 100 %": (
            "coverage", failed(core={"taken": 2999, "branches": 3000}, src={"taken": 991, "branches": 1025}),
            "| branch coverage | **FAILED**: 96.6 % of 1,025 branches of `src/` taken, "
            "99.9 % in the receive path, the send queue and the decoders | `./dev coverage` | "
            "2026-03-04, `0123456789` |"),
        "all mutants": (
            "mutate", passed(noticed=1290, counted=1300, count="all", only=[]),
            "| mutation | 1,290 of 1,300 small changes of the code noticed by a test (99.2 %; all there are) | "
            "`./dev mutate --count all` | 2026-03-04, `0123456789` |"),
        "some mutants of some files": (
            "mutate", passed(noticed=38, counted=40, count=40, only=["text"]),
            "| mutation | 38 of 40 small changes of the code noticed by a test (95.0 %; chosen by chance) | "
            "`./dev mutate --count 40 --only text` | 2026-03-04, `0123456789` |"),
        "the fuzz target that has had least counts": (
            "fuzz", fuzzed(EARLIER, stream=12000, frames=1234567),
            "| fuzzing | 2 targets, 12,000 executions or more of each in all runs since they were built, no finding | "
            "`./dev fuzz 60` | "
            "2026-03-04, `0123456789` |"),
        "a finding of the fuzzer": (
            "fuzz", failed(executions={"stream": 7}, findings={"stream": 2}, seconds=60, runs=7),
            "| fuzzing | **FAILED**: 1 target, 7 executions or more of each in all runs since they were built, "
            "2 findings | `./dev fuzz --runs 7` | "
            "2026-03-04, `0123456789` |"),
        "seeds": (
            "simulate", simulated(EARLIER, 10000),
            "| whole link, simulated | every rule held for 10,000 seeds, a minute of virtual time each | "
            "`./dev simulate 10000` | 2026-03-04, `0123456789` |"),
        "a seed that broke a rule": (
            "simulate", failed(wanted=10000, seeds=400, broken=10),
            "| whole link, simulated | **FAILED**: 10 of 400 seeds broke a rule | `./dev simulate 10000` | "
            "2026-03-04, `0123456789` |"),
        "a simulation that crashed": (
            "simulate", failed(wanted=10000), "| whole link, simulated | **FAILED**: broke off before it had counted "
            "anything | `./dev simulate 10000` | 2026-03-04, `0123456789` |"),
        "hours": (
            "hours", passed(hours=24), "| memory over time | 24 hours of virtual time, memory flat | "
            "`./dev simulate --hours 24` | 2026-03-04, `0123456789` |"),
        "hours with a growing memory": (
            "hours", failed(hours=24), "| memory over time | **FAILED**: 24 hours of virtual time, memory NOT flat, "
            "or a rule broken | `./dev simulate --hours 24` | 2026-03-04, `0123456789` |"),
        "no race": (
            "races", passed(**TESTS, short=False, planted_found=True, reports=0),
            "| thread sanitizer | no report, all 1,220 tests passed, the planted races found | `./dev races` | "
            "2026-03-04, `0123456789` |"),
        "races, and a blind sanitizer": (
            "races", failed(**TESTS, short=True, planted_found=False, reports=3),
            "| thread sanitizer | **FAILED**: 3 reports, all 1,220 tests passed, the planted races NOT found | "
            "`./dev races --short` | 2026-03-04, `0123456789` |"),
        "a missed goal is no failure, and is named": (
            "bench", passed(met=34, missed=["one pass over noise"], as_baseline=True, only="counts", long=False),
            "| what it costs | 34 goals met, 1 missed: one pass over noise; counts as in the baseline | "
            "`./dev bench --counts` | 2026-03-04, `0123456789` |"),
        "counts above the baseline": (
            "bench", failed(met=40, missed=[], as_baseline=False, only=None, long=True),
            "| what it costs | **FAILED**: 40 goals met; counts NOT as in the baseline | `./dev bench --long` | "
            "2026-03-04, `0123456789` |"),
        "times alone have no baseline": (
            "bench", passed(met=6, missed=[], as_baseline=None, only="times", long=False),
            "| what it costs | 6 goals met | `./dev bench --only times` | 2026-03-04, `0123456789` |"),
        "exits": (
            "exits", passed(count=1000), "| exits in the middle of traffic | 1,000 exits, none bad | "
            "`./dev exits 1000` | 2026-03-04, `0123456789` |"),
        "bad exits under an instrument": (
            "exits", failed(count=50, instrument="--valgrind"),
            "| exits in the middle of traffic | **FAILED**: 50 exits, some bad | `./dev exits --valgrind 50` | "
            "2026-03-04, `0123456789` |"),
    }

    def test_says_what_a_result_is(self):
        for name, (proof, sample, line) in self.samples.items():
            with self.subTest(name):
                self.assertEqual(figures.row(proof, sample), line)

    def test_each_proof_has_a_sample(self):
        self.assertEqual({proof for proof, _, _ in self.samples.values()} | {"sanitize", "cross-arm64"},
                         set(figures.PROOFS))

    def test_a_run_that_did_not_end_is_told_beside_the_figures(self):
        row = figures.row("simulate", {**simulated(EARLIER, 500), "unfinished": unfinished(LATER)})
        self.assertIn("500 seeds, a minute of virtual time each; a run of 2026-03-05, `abcdefabcd` with changes "
                      "did not end |", row)

    def test_a_first_run_that_did_not_end_has_no_figures(self):
        row = figures.row("hours", merged({}, {"hours": unfinished(LATER)})["hours"])
        self.assertEqual(row, "| memory over time | none yet; a run of 2026-03-05, `abcdefabcd` with changes "
                              "did not end | `./dev simulate` |  |")

    def test_no_figures_at_all_are_said_to_be_none(self):
        self.assertEqual(figures.table({}), "No proof has left a result yet.")


class Merging(unittest.TestCase):
    """Which of two results counts."""

    def assert_kept(self, proof, old, new):
        self.assertEqual(merged({proof: old}, {proof: new}), {proof: old})

    def assert_taken(self, proof, old, new):
        self.assertEqual(merged({proof: old}, {proof: new}), {proof: new})

    def test_a_proof_that_was_not_run_keeps_its_figures(self):
        old = {"hours": passed(hours=24), "test": passed(**TESTS)}
        new = passed(LATER, tests=3, skipped=0, failed=[])
        self.assertEqual(merged(old, {"test": new}), {"hours": old["hours"], "test": new})

    def test_a_smaller_run_without_findings_is_not_taken(self):
        self.assert_kept("simulate", simulated(EARLIER, 10000), simulated(LATER, 500))
        self.assert_kept("hours", passed(hours=24), passed(LATER, hours=2))
        self.assert_kept("exits", passed(count=1000), passed(LATER, count=60))
        self.assert_kept("races", passed(**TESTS, short=False), passed(LATER, **TESTS, short=True))
        self.assert_kept("fuzz", fuzzed(EARLIER, stream=10, texts=10), fuzzed(LATER, stream=99, texts=9))
        self.assert_kept("fuzz", fuzzed(EARLIER, stream=10, texts=10), fuzzed(LATER, stream=9999))
        self.assert_kept("mutate", passed(count="all", only=[]), passed(LATER, count=2000, only=[]))
        self.assert_kept("mutate", passed(count=40, only=[]), passed(LATER, count="all", only=["text"]))
        self.assert_kept("bench", passed(only=None, long=False), passed(LATER, only="counts", long=False))
        self.assert_kept("bench", passed(only=None, long=True), passed(LATER, only=None, long=False))

    def test_one_that_is_as_large_or_larger_is_taken(self):
        self.assert_taken("simulate", simulated(EARLIER, 500), simulated(LATER, 500))
        self.assert_taken("simulate", simulated(EARLIER, 500), simulated(LATER, 9000))
        self.assert_taken("fuzz", fuzzed(EARLIER, stream=10, texts=10), fuzzed(LATER, stream=10, texts=11))
        self.assert_taken("mutate", passed(count="all", only=[]), passed(LATER, count="all", only=[]))
        self.assert_taken("races", passed(**TESTS, short=True), passed(LATER, **TESTS, short=False))
        self.assert_taken("bench", passed(only="counts", long=False), passed(LATER, only=None, long=False))

    def test_fewer_tests_or_goals_than_before_are_taken(self):
        self.assert_taken("test", passed(**TESTS), passed(LATER, tests=5, skipped=0, failed=[]))
        self.assert_taken("coverage", passed(**covered(300)), passed(LATER, **covered(299)))
        self.assert_taken("bench", passed(met=40, only=None, long=False), passed(LATER, met=30, only=None, long=False))

    def test_a_failure_is_taken_however_small_its_run(self):
        self.assert_taken("simulate", simulated(EARLIER, 10000), failed(LATER, wanted=1, seeds=1, broken=1))
        self.assert_taken("fuzz", fuzzed(EARLIER, stream=10, texts=10), failed(LATER))

    def test_a_small_run_does_not_hide_the_failure_of_a_large_one(self):
        self.assert_kept("simulate", failed(wanted=10000, seeds=10000, broken=1), simulated(LATER, 500))
        self.assert_taken("simulate", failed(wanted=10000, seeds=10000, broken=1), simulated(LATER, 10000))

    def test_what_is_left_of_an_earlier_day_is_not_taken(self):
        self.assert_kept("test", passed(LATER, **TESTS), failed(EARLIER, **TESTS))

    def test_a_run_that_did_not_end_leaves_the_figures_and_is_noted(self):
        noted = merged({"test": passed(**TESTS)}, {"test": unfinished(LATER)})
        self.assertEqual(noted["test"]["tests"], 1220)
        self.assertEqual(noted["test"]["unfinished"], {"begun": LATER, "commit": "abcdefabcd", "clean": False})

    def test_the_next_run_that_ends_removes_the_note(self):
        noted = {**simulated(EARLIER, 10000), "unfinished": unfinished(EARLIER)}
        self.assertNotIn("unfinished", merged({"simulate": noted}, {"simulate": simulated(LATER, 500)})["simulate"])
        self.assertNotIn("unfinished", merged({"simulate": noted}, {"simulate": simulated(LATER, 10000)})["simulate"])


class Readme(unittest.TestCase):
    """README.md and figures.json."""

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        folder = pathlib.Path(holder.name)
        self.results, self.readme, self.figures = folder / "results", folder / "README.md", folder / "figures.json"
        self.results.mkdir(parents=True)
        self.readme.write_text("before\n<!-- figures -->\nold\n<!-- /figures -->\nafter\n")
        self.leave("hours", passed(hours=24))

    def leave(self, proof, content):
        (self.results / f"{proof}.json").write_text(json.dumps(content))

    def renew(self):
        with contextlib.redirect_stdout(io.StringIO()) as said:
            self.assertEqual(figures.renew(self.readme, self.figures, self.results), 0)
        return said.getvalue()

    def check(self):
        with contextlib.redirect_stdout(io.StringIO()) as said, contextlib.redirect_stderr(io.StringIO()):
            return figures.check(self.readme, self.figures), said.getvalue()

    def test_has_the_figures_between_its_marks(self):
        self.renew()
        self.assertEqual(self.readme.read_text(), """before
<!-- figures -->
| proof | result | command | run |
|---|---|---|---|
| memory over time | 24 hours of virtual time, memory flat | `./dev simulate --hours 24` | 2026-03-04, `0123456789` |
<!-- /figures -->
after
""")
        self.assertEqual(json.loads(self.figures.read_text()), {"hours": passed(hours=24)})

    def test_says_of_each_proof_what_became_of_it(self):
        self.renew()
        self.leave("hours", passed(LATER, hours=2))
        said = self.renew()
        self.assertIn("figures: hours: keeps its figures, the last run was a smaller one, and has found nothing\n",
                      said)
        self.assertIn("figures: test: not run here\n", said)

    def test_is_as_its_figures_say_after_it_was_renewed(self):
        self.renew()
        status, said = self.check()
        self.assertEqual(status, 0)
        self.assertNotIn("README.md", said)

    def test_proofs_without_figures_are_named(self):
        self.renew()
        self.leave("exits", unfinished(LATER))
        self.renew()
        said = self.check()[1]
        self.assertRegex(said, "(?m)^figures: none yet of test, sanitize, .*coverage, mutate, exits, bench$")
        self.assertNotIn("hours", said)

    def test_typed_figures_are_found(self):
        self.renew()
        self.readme.write_text(self.readme.read_text().replace("24 hours", "48 hours"))
        status, said = self.check()
        self.assertEqual(status, 1)
        self.assertIn("-| memory over time | 48 hours", said)
        self.assertIn("+| memory over time | 24 hours", said)

    def test_marks_that_are_missing_are_told(self):
        for text in ("", "<!-- figures -->", "<!-- /figures --><!-- figures -->", 2 * self.readme.read_text()):
            with self.subTest(text):
                self.readme.write_text(text)
                with self.assertRaisesRegex(figures.FiguresError, "README.md needs one"):
                    self.renew()
                self.assertFalse(self.figures.exists())

    def test_a_result_of_an_unknown_proof_is_told(self):
        self.leave("luck", passed())
        with self.assertRaisesRegex(figures.FiguresError, "luck.json is of no proof"):
            self.renew()

    def test_a_result_that_is_damaged_is_told(self):
        (self.results / "hours.json").write_text('{"outcome": ')
        with self.assertRaisesRegex(figures.FiguresError, "hours.json is no JSON"):
            self.renew()


class Names(unittest.TestCase):
    """What leaves results behind, and what gathers them, know the same proofs."""

    BEGINS = re.compile(r"""result(?:\.py)?"?\)? begin "?([\w$-]+)|result\("begin", "(\w+)""")
    VARIABLE = {"$proof": {"simulate", "hours"}, "cross-$architecture": {"cross-armhf", "cross-arm64"}}

    def begun(self):
        git = ["git", "-c", f"safe.directory={ROOT}", "-C", str(ROOT)]
        listed = subprocess.run([*git, "ls-files", "dev", "*.sh", "*.py"], capture_output=True, text=True,
                                check=True).stdout
        for path in listed.splitlines():
            if (ROOT / path).is_file() and not path.startswith(("docs/figures/", "tests/figures/")):
                for found in self.BEGINS.findall((ROOT / path).read_text(encoding="utf-8")):
                    name = found[0] or found[1]
                    yield from self.VARIABLE.get(name, {name})

    def test_each_proof_that_begins_has_its_row(self):
        if not (ROOT / ".git").exists():
            self.skipTest("no checkout")
        self.assertEqual(set(self.begun()), set(figures.PROOFS))


class Command(unittest.TestCase):
    """The command itself."""

    def renew(self, *arguments):
        done = subprocess.run([str(ROOT / "docs" / "figures" / "renew.sh"), *arguments], capture_output=True, text=True,
                              check=False)
        return done.returncode, done.stdout, done.stderr

    def test_wrong_arguments_are_told(self):
        self.assertEqual(self.renew("--chek"), (
            2, "", 'figures: --check or nothing, and "--chek" was given: docs/figures/renew.sh --help\n'))

    def test_help_is_there(self):
        self.assertIn("--check", self.renew("--help")[1])


if __name__ == "__main__":
    unittest.main()
