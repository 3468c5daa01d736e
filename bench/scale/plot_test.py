"""Tests of the diagram of refresh time and capture loss, run as a program of its own."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as xml

PLOT = pathlib.Path(__file__).with_name("plot")
SVG = "{http://www.w3.org/2000/svg}"


def run_of(cameras, median, worst, loss):
    return {"cameras": cameras, "refresh_median_ms": median, "refresh_worst_ms": worst,
            "capture_loss_percent": loss, "rate_MBps": 400.0, "capacity_samples": 10000000,
            "view_seconds": 20.0, "processors": 2}


class PlotTest(unittest.TestCase):
    def plot(self, content):
        with tempfile.TemporaryDirectory() as folder:
            source, target = pathlib.Path(folder, "scale.json"), pathlib.Path(folder, "scale.svg")
            source.write_text(content, encoding="utf-8")
            finished = subprocess.run([sys.executable, PLOT, source, target], capture_output=True,
                                      text=True, check=False)
            drawing = target.read_text(encoding="utf-8") if target.exists() else None
        return finished, drawing

    def draw(self, *runs):
        finished, drawing = self.plot(json.dumps(runs))
        self.assertEqual(finished.returncode, 0, finished.stderr)
        return xml.fromstring(drawing)

    @staticmethod
    def texts(drawing):
        return [element.text for element in drawing.iter(f"{SVG}text")]

    @staticmethod
    def points(drawing, line):
        """Of the n-th line: worst, median, loss."""
        drawn = list(drawing.iter(f"{SVG}polyline"))[line].get("points")
        return [tuple(float(number) for number in point.split(",")) for point in drawn.split()]

    def test_axes_say_what_they_show(self):
        texts = self.texts(self.draw(run_of(1, 5, 9, 0), run_of(8, 30, 44, 2)))
        for wanted in ("cameras", "milliseconds", "percent of the frames", "worst", "median",
                       "frames lost", "1", "8"):
            self.assertIn(wanted, texts)
        self.assertTrue(any("10,000,000 samples" in text for text in texts))

    def test_values_are_to_scale(self):
        drawing = self.draw(run_of(1, 10, 20, 0), run_of(3, 30, 40, 4))
        (x1, worst1), (x3, worst3) = self.points(drawing, 0)
        (_, median1), (_, median3) = self.points(drawing, 1)
        self.assertLess(x1, x3)
        self.assertAlmostEqual(median1 - median3, worst1 - worst3, 2)
        self.assertAlmostEqual(median1 - worst1, worst1 - median3, 2)
        loss = self.points(drawing, 2)
        self.assertGreater(loss[0][1], loss[1][1])

    def test_order_of_runs_does_not_matter(self):
        one, two = run_of(1, 5, 9, 0), run_of(2, 6, 12, 1)
        self.assertEqual(xml.tostring(self.draw(one, two)), xml.tostring(self.draw(two, one)))

    def test_everything_lies_inside(self):
        for largest in (0, 0.3, 1, 7, 99.9, 100, 12345):
            drawing = self.draw(run_of(1, 0, 0, 0), run_of(8, largest, largest, largest))
            for line in range(3):
                for x, y in self.points(drawing, line):
                    self.assertTrue(0 < x < 860 and 70 <= y <= 320, (largest, x, y))

    def test_unusable_input(self):
        for content in ("", "[]", "[{}]", "{"):
            finished, drawing = self.plot(content)
            self.assertEqual(finished.returncode, 2, content)
            self.assertIsNone(drawing)
            self.assertRegex(finished.stderr, "^plot: ")


if __name__ == "__main__":
    unittest.main()
