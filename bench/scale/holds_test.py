"""Tests of how the longest holds get into the benchmarks' results, run as a program of its own."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

HOLDS = pathlib.Path(__file__).with_name("holds")


def hold(most):
    return {"at_least_ms": most - 0.5, "at_most_ms": most}


STEADILY = {"gui_hold": hold(3.0), "refresh_median_ms": 7.0, "capture_loss_percent": 0.0}


def edit(first, later, measuring):
    return {"still": {"first_refresh_gui_hold": hold(first), "later_gui_hold": hold(later),
                      "graphs_new_after_ms": 1200.0},
            "measuring": {"gui_hold": hold(measuring)}}


class HoldsTest(unittest.TestCase):
    def run_with(self, edited, steadily=STEADILY, status=0):
        with tempfile.TemporaryDirectory() as folder:
            program, results = pathlib.Path(folder, "scale"), pathlib.Path(folder, "bench.json")
            answers = {"--holds": json.dumps(steadily), "--edit": json.dumps(edited)}
            program.write_text(f"#!{sys.executable}\nimport sys\nprint({answers!r}[sys.argv[1]])\n"
                               f"sys.exit({status})\n", encoding="utf-8")
            program.chmod(0o755)
            results.write_text('{"benchmarks": [{"name": "other"}]}', encoding="utf-8")
            finished = subprocess.run([sys.executable, HOLDS, program, results], capture_output=True,
                                      text=True, check=False)
            return finished, json.loads(results.read_text(encoding="utf-8"))["benchmarks"]

    def test_longest_holds_are_added(self):
        for holds in ((9.0, 4.0, 5.0), (4.0, 9.0, 5.0), (4.0, 5.0, 9.0)):
            finished, benchmarks = self.run_with(edit(*holds))
            self.assertEqual(finished.returncode, 0, finished.stderr)
            self.assertEqual([entry["name"] for entry in benchmarks], ["other", "scale/holds", "scale/edit"])
            self.assertEqual([entry.get("gui_hold_ms") for entry in benchmarks], [None, 3.0, 9.0])
            self.assertIn("scale/holds: longest hold by the GUI 3.00 ms", finished.stdout)

    def test_failed_run_leaves_the_results(self):
        finished, benchmarks = self.run_with(edit(1.0, 2.0, 3.0), status=3)
        self.assertEqual((finished.returncode, benchmarks), (1, [{"name": "other"}]))

    def test_other_output_leaves_the_results(self):
        finished, benchmarks = self.run_with({})
        self.assertEqual((finished.returncode, benchmarks), (1, [{"name": "other"}]))
        self.assertIn("still", finished.stderr)


if __name__ == "__main__":
    unittest.main()
