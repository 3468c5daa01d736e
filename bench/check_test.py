"""Tests of the floor check, run as a program of its own."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).with_name("check")


def entry(name, time, unit="ms", **more):
    """Both times differ, so that taking the wrong one shows."""
    own = name.endswith("/manual_time")
    return {
        "name": name,
        "run_name": name,
        "run_type": "iteration",
        "real_time": time if own else 7 * time + 1000,
        "cpu_time": 7 * time + 1000 if own else time,
        "time_unit": unit,
        **more,
    }


def median(name, time, unit="ms"):
    return entry(name, time, unit, run_type="aggregate", aggregate_name="median")


def floor(kind, limit, numerator="slow", denominator="fast"):
    return {"name": "gain", "kind": kind, "numerator": numerator, "denominator": denominator, "floor": limit}


class CheckTest(unittest.TestCase):
    def check(self, floors, benchmarks, form="full"):
        with tempfile.TemporaryDirectory() as folder:
            paths = []
            for name, content in (
                ("results", {"context": {"velmora_form": form}, "benchmarks": benchmarks}),
                ("floors", floors),
            ):
                paths.append(pathlib.Path(folder, name))
                paths[-1].write_text(json.dumps(content), encoding="utf-8")
            run = subprocess.run([sys.executable, CHECK, *paths], capture_output=True, text=True, check=False)
            return run.returncode, run.stdout.splitlines()

    def test_limits_belong_to_both_kinds(self):
        benchmarks = [median("slow", 10), median("fast", 4)]
        self.assertEqual(self.check([floor("min-ratio", 2.5)], benchmarks), (0, ["ok   gain: 2.50 (floor >= 2.5)"]))
        self.assertEqual(self.check([floor("max-ratio", 2.5)], benchmarks), (0, ["ok   gain: 2.50 (floor <= 2.5)"]))

    def test_misses(self):
        benchmarks = [median("slow", 10), median("fast", 4)]
        self.assertEqual(self.check([floor("min-ratio", 2.6)], benchmarks), (1, ["MISS gain: 2.50 (floor >= 2.6)"]))
        self.assertEqual(self.check([floor("max-ratio", 2.4)], benchmarks), (1, ["MISS gain: 2.50 (floor <= 2.4)"]))

    def test_one_miss_of_several_is_a_miss(self):
        benchmarks = [median("slow", 10), median("fast", 4)]
        status, lines = self.check([floor("min-ratio", 9), floor("min-ratio", 1)], benchmarks)
        self.assertEqual((status, len(lines)), (1, 2))

    def test_units_are_converted(self):
        status, lines = self.check([floor("min-ratio", 1000)], [median("slow", 3, "s"), median("fast", 3000, "us")])
        self.assertEqual((status, lines), (0, ["ok   gain: 1000.00 (floor >= 1000)"]))

    def test_times_kept_by_the_benchmark(self):
        benchmarks = [median("slow/manual_time", 10), median("fast/manual_time", 4)]
        floors = [floor("min-ratio", 2.5, "slow/manual_time", "fast/manual_time")]
        self.assertEqual(self.check(floors, benchmarks), (0, ["ok   gain: 2.50 (floor >= 2.5)"]))

    def test_median_of_repetitions(self):
        benchmarks = [entry("slow", t) for t in (9, 10, 99)] + [entry("fast", t) for t in (1, 5, 6)]
        self.assertEqual(self.check([floor("min-ratio", 2)], benchmarks)[1], ["ok   gain: 2.00 (floor >= 2)"])

    def test_aggregate_goes_before_repetitions(self):
        benchmarks = [entry("slow", 1), median("slow", 8), median("fast", 2), entry("fast", 50)]
        self.assertEqual(self.check([floor("min-ratio", 2)], benchmarks)[1], ["ok   gain: 4.00 (floor >= 2)"])

    def test_what_is_not_measured_is_missed(self):
        status, lines = self.check([floor("min-ratio", 1)], [median("slow", 8)])
        self.assertEqual((status, lines), (1, ["MISS gain: not measured: fast (floor >= 1)"]))
        failed = [median("slow", 8), entry("fast", 1, error_occurred=True)]
        self.assertEqual(self.check([floor("min-ratio", 1)], failed)[0], 1)

    def test_counters(self):
        def limited(limit, counter="size"):
            return {
                "name": "memory", "kind": "max-counter", "benchmark": "slow", "counter": counter, "floor": limit
            }  # fmt: skip

        benchmarks = [entry("slow", 10, size=value) for value in (1, 5, 99)]
        self.assertEqual(self.check([limited(5)], benchmarks), (0, ["ok   memory: 5.00 (floor <= 5)"]))
        self.assertEqual(self.check([limited(4.9)], benchmarks), (1, ["MISS memory: 5.00 (floor <= 4.9)"]))
        status, lines = self.check([limited(5, "weight")], benchmarks)
        self.assertEqual((status, lines), (1, ["MISS memory: not measured: slow (floor <= 5)"]))

    def test_the_short_form_has_fewer_floors(self):
        benchmarks = [median("slow", 10), median("fast", 4)]
        floors = [floor("min-ratio", 1), {**floor("min-ratio", 9), "form": "full"}]
        self.assertEqual(self.check(floors, benchmarks, "short")[0], 0)
        self.assertEqual(self.check(floors, benchmarks)[0], 1)
        self.assertEqual(self.check(floors[1:], [], "full")[0], 1)

    def test_unusable_input(self):
        self.assertEqual(self.check([floor("between", 1)], [median("slow", 8), median("fast", 2)])[0], 2)
        self.assertEqual(self.check([], [median("slow", 8)])[0], 2)
        self.assertEqual(subprocess.run([sys.executable, CHECK], capture_output=True, check=False).returncode, 2)


if __name__ == "__main__":
    unittest.main()
