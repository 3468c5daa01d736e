"""Tests of the check of the coverage table."""

import importlib.machinery
import importlib.util
import pathlib
import sys
import unittest

CHECK = pathlib.Path(__file__).with_name("check-coverage-table")


def load():
    sys.dont_write_bytecode = True  # beside the source
    loader = importlib.machinery.SourceFileLoader("check_coverage_table", str(CHECK))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module


check = load()
HEAD = "# Title\n\n| behaviour | test |\n| --- | --- |\n"


def problems(*rows):
    return [what for _, _, what in check.problems_in(HEAD + "\n".join(rows) + "\n")]


class CoverageTableCheckTest(unittest.TestCase):
    def test_good_rows(self):
        self.assertEqual(
            problems(
                "| numbers | `CellTextTest::wholeNumber` |",
                "| no `number` | `CellTextTest::wholeNumber (NaN)`, `LogTest::lineOfAMessage` |",
                "| symbols | `ContractSymbolsTest` |",
                "| inside a loop of CMake | `FrameSpeedsTest::absentArrays` |",
                "| on the screen | `ThroughputTest::test_a_small_screen` |",
            ),
            [],
        )

    def test_names_that_do_not_exist(self):
        for reference, what in (
            ("CellTextTest::wholeNumbers", "no such function"),
            ("CellTextTest::wholeNumber_data", "no such function"),
            ("CameraTableTest::init", "no such function"),
            ("CameraTableTest::isRowRefreshed", "no such function"),
            ("CellTextTest::wholeNumber (NaNs)", "no such row"),
            ("ThroughputTest::test_nothing", "no such function"),
            ("CellTextTest", "names no function"),
            ("CellTest::wholeNumber", "no such test is registered"),
            ("NoSymbolsTest", "no such test is registered"),
            ("CellTextTest wholeNumber", "cannot be read"),
        ):
            self.assertEqual(problems("| numbers | `%s` |" % reference), [what], reference)

    def test_row_without_a_test(self):
        good = "| numbers | `CellTextTest::wholeNumber` |"
        self.assertEqual(problems(good, "| `something` | |"), ["no test"])

    def test_empty_table(self):
        self.assertEqual(problems(), ["is empty"])


if __name__ == "__main__":
    unittest.main()
