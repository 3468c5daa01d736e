"""Two simulated cameras, measured from the first click to the closed window."""

import unittest

from desktop import wait_for
from window import BLUE, ORANGE, WindowTest, differing, near


class ThroughputTest(WindowTest):
    def test_a_measurement_from_start_to_end(self):
        self.start(1280, 900)
        rows = self.program.cells(self.table)
        self.assertEqual(len(rows), 2)
        self.assertEqual(self.statuses(), ["Stopped", "Stopped"])
        self.screen.screenshot("1-two-cameras")

        self.press("Start All")
        self.program.find("push button", "Stop All")
        wait_for(lambda: self.statuses() == ["Testing", "Testing"], "both cameras measuring")

        def measured():
            return all(int(row[3]) > 0 and int(row[4]) < 2147483647 for row in self.program.cells(self.table))

        wait_for(measured, "statistics of both cameras")
        wait_for(lambda: near(self.graph(), ORANGE) > 400, "orange curves")
        wait_for(lambda: int(self.program.cells(self.table)[1][5].split()[0]) > 10, "a buffer level")
        wait_for(lambda: near(self.graph(), BLUE, 90) > 20, "blue curves")
        self.screen.screenshot("2-measuring")
        self.assertFalse(self.program.find("push button", "Setup...").enabled)

        # While it measures: the controls take effect with the next refresh.
        centre = self.middle_of_upper_plot()
        self.screen.wheel_up(centre, times=3)
        self.screen.drag(centre, (centre[0] - 120, centre[1]))
        self.screen.screenshot("3-zoomed-while-measuring")
        self.press("Reset Zoom")
        self.press("Reset Pan")
        wait_for(lambda: near(self.graph(), ORANGE) > 400, "curves after the resets")

        self.press("Stop All")
        self.program.find("push button", "Start All")
        wait_for(lambda: self.statuses() == ["Stopped", "Stopped"], "both cameras stopped")
        self.press("Reset Zoom")
        whole = self.settled()
        self.screen.screenshot("4-stopped")

        # Now nothing moves by itself: each step must change the picture, each
        # reset bring it back.
        self.screen.wheel_up(centre, times=4)
        zoomed = self.settled()
        self.assertGreater(differing(whole, zoomed), 1000)
        self.screen.screenshot("5-zoomed")
        self.screen.drag(centre, (centre[0] + 200, centre[1]))
        panned = self.settled()
        self.assertGreater(differing(zoomed, panned), 1000)
        self.screen.screenshot("6-panned")
        self.press("Reset Pan")
        at_the_end = self.settled()
        self.assertGreater(differing(panned, at_the_end), 1000)
        self.assertGreater(differing(whole, at_the_end), 1000)
        self.press("Reset Zoom")
        self.assertEqual(differing(whole, self.settled()), 0)

        # One camera less: its plot goes, the other takes the room.
        self.show_last_columns()
        self.screen.click(self.program.cell(self.table, 1, 10))
        single = self.settled()
        self.assertGreater(differing(whole, single), 5000)
        self.screen.screenshot("7-one-plot")
        self.screen.click(self.program.cell(self.table, 1, 10))
        self.press("Refresh")
        self.settled()

        self.set_axis_by_hand()
        self.close()

    def set_axis_by_hand(self):
        before = self.settled()
        x, y, width, height = self.program.cell(self.table, 0, 11).box
        self.screen.click((x + 12, y + height // 2))  # the check box at its left
        edits = (x + width - 80, y + height // 2), (x + width - 28, y + height // 2)
        for place, text in zip(edits, ("100", "900")):
            self.screen.click(place, times=3)
            self.screen.key("ctrl+a")
            self.screen.type(text)
            self.screen.key("Return")
        self.press("Refresh")
        self.assertGreater(differing(before, self.settled()), 500)
        self.screen.screenshot("8-axis-by-hand")

    def test_a_small_screen(self):
        self.start(1024, 768)
        self.screen.screenshot("9-small-screen")
        frame = self.program.root.find("frame")
        x, y, width, height = frame.box
        self.assertGreaterEqual(x, 0)
        self.assertLessEqual(x + width, 1024)
        self.assertLessEqual(y + height, 768)
        for name in ("Start All", "Reset Zoom", "Reset Pan", "Refresh", "Setup..."):
            x, y, width, height = self.program.find("push button", name).box
            self.assertLessEqual(x + width, 1024, name)
            self.assertLessEqual(y + height, 768, name)
        self.press("Start All")
        wait_for(lambda: self.statuses() == ["Testing", "Testing"], "both cameras measuring")
        wait_for(lambda: near(self.graph(), ORANGE) > 200, "curves")
        self.screen.screenshot("10-small-screen-measuring")
        # The window is closed while it measures.
        self.close()

    def test_a_terminated_program_restores_the_cameras(self):
        self.start(1024, 768)
        self.press("Start All")
        wait_for(lambda: self.statuses() == ["Testing", "Testing"], "both cameras measuring")
        self.program.terminate()
        self.assertEqual(self.program.wait_for_end(), 143, self.program.output())


if __name__ == "__main__":
    unittest.main()
