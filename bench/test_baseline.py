"""What the comparison with the baseline lets pass, and what it does not."""

import json
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
sys.dont_write_bytecode = True

import baseline  # noqa: E402
import rows  # noqa: E402

MADE_WITH = {"compiler": "12.2.0", "Qt": "5.15.8"}


def compared(before, now, made_with=None):
    """A comparison of these counts, made with the same compiler and Qt unless something else is given."""
    return baseline.Comparison({"made with": MADE_WITH, "counts": before}, made_with or MADE_WITH, now)


class ComparisonTest(unittest.TestCase):
    """Counts against counts."""

    def test_passes_what_is_the_same(self):
        comparison = compared({"a": 1000, "b": 0}, {"a": 1000, "b": 0})
        self.assertTrue(comparison.passes)
        self.assertEqual(list(comparison.lines()), [])

    def test_passes_less_than_five_percent_more(self):
        self.assertTrue(compared({"a": 1000}, {"a": 1049}).passes)

    def test_fails_above_five_percent(self):
        comparison = compared({"a": 1000, "b": 10}, {"a": 1052, "b": 10})
        self.assertFalse(comparison.passes)
        self.assertIn("  ABOVE  a: 1,000 -> 1,052 (+5.2%)", list(comparison.lines()))

    def test_fails_at_the_first_allocation(self):
        comparison = compared({"allocations a": 0}, {"allocations a": 1})
        self.assertFalse(comparison.passes)
        self.assertIn("  ABOVE  allocations a: 0 -> 1 (from none)", list(comparison.lines()))

    def test_fails_at_one_more_allocation_for_a_few(self):
        self.assertFalse(compared({"allocations a": 7.11}, {"allocations a": 8.11}).passes)

    def test_passes_less_and_says_so(self):
        comparison = compared({"a": 1000}, {"a": 500})
        self.assertTrue(comparison.passes)
        self.assertEqual(next(comparison.lines()), "  below  a: 1,000 -> 500 (-50.0%)")

    def test_fails_without_a_row_of_the_baseline(self):
        comparison = compared({"a": 1, "b": 1}, {"a": 1})
        self.assertFalse(comparison.passes)
        self.assertIn("  MISSING  b: in the baseline, and not measured", list(comparison.lines()))

    def test_fails_with_a_row_that_the_baseline_has_not(self):
        comparison = compared({"a": 1}, {"a": 1, "b": 1})
        self.assertFalse(comparison.passes)
        self.assertIn("  MISSING  b: measured, and not in the baseline", list(comparison.lines()))

    def test_fails_at_an_allocation_whatever_the_compiler_is(self):
        self.assertFalse(compared({"allocations a": 0}, {"allocations a": 1}, {"compiler": "13.1.0"}).passes)

    def test_says_when_the_compiler_is_another(self):
        comparison = compared({"a": 1000}, {"a": 1100}, {"compiler": "13.1.0", "Qt": "5.15.8"})
        self.assertTrue(comparison.passes)
        self.assertTrue(any("made with compiler 12.2.0, and this is 13.1.0" in text for text in comparison.lines()))


class FileTest(unittest.TestCase):
    """What is no baseline is said in one line."""

    def load(self, content):
        """Loads a baseline with this content."""
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "baseline.json"
            if content is not None:
                path.write_text(content, encoding="utf-8")
            return baseline.load(path)

    def assert_refused(self, content, message):
        """Expects one line, with this in it."""
        with self.assertRaises(baseline.BaselineError) as caught:
            self.load(content)
        self.assertIn(message, str(caught.exception))
        self.assertNotIn("\n", str(caught.exception))

    def test_refuses_what_is_malformed(self):
        self.assert_refused(None, "No such file")
        self.assert_refused("", "no JSON")
        self.assert_refused("{", "no JSON")
        self.assert_refused("[]", "an object")
        self.assert_refused('{"counts": {}}', '"made with" is missing')
        self.assert_refused('{"made with": {}, "counts": []}', '"counts" is missing, or no object')
        self.assert_refused('{"made with": {}, "counts": {"a": "12"}}', 'the count of "a" is "12"')
        self.assert_refused('{"made with": {}, "counts": {"a": true}}', 'the count of "a" is true')
        self.assert_refused('{"made with": {}, "counts": {"a": -1}}', 'the count of "a" is -1')

    def test_loads_what_it_has_stored(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "baseline.json"
            baseline.store(path, MADE_WITH, {"b": 2.5, "a": 1})
            self.assertEqual(baseline.load(path), {"made with": MADE_WITH, "counts": {"a": 1, "b": 2.5}})
            self.assertEqual(list(json.loads(path.read_text(encoding="utf-8"))["counts"]), ["a", "b"])


class RowTest(unittest.TestCase):
    """The table."""

    def test_fits_a_line(self):
        fixed, slope, residual = rows.fitted_line([(0, 10), (10, 30), (20, 50)])
        self.assertAlmostEqual(fixed, 10)
        self.assertAlmostEqual(slope, 2)
        self.assertAlmostEqual(residual, 0)

    def test_shows_how_far_a_curve_is_from_a_line(self):
        self.assertGreater(rows.fitted_line([(0, 0), (10, 100), (20, 400), (30, 900)])[2], rows.STRAIGHT)

    def test_says_met_and_missed(self):
        self.assertEqual(rows.times_bare("a", 590, 100, 6).verdict(), "met")
        self.assertEqual(rows.times_bare("a", 610, 100, 6).verdict(), "MISSED")
        self.assertEqual(rows.most("a", 401, 400).verdict(), "MISSED")
        self.assertEqual(rows.Row("a", "1").verdict(), "")


if __name__ == "__main__":
    unittest.main()
