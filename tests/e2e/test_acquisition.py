"""Counters of a camera that loses frames in every way, in acquisition mode."""

import unittest

from desktop import wait_for
from window import ORANGE, WindowTest, differing, near

RED = (255, 0, 0)
YELLOW = (255, 255, 0)
GREEN = (0, 255, 0)
VIOLET = (80, 80, 255)
PALE_BLUE = (144, 200, 255)

HEADERS = ["Camera", "Status", "Data Format", "Measure", "Transferred", "Transport skip", "API skip",
           "Missed trg. overlap", "Missed trg overflow", "Buffer overflow", "Export data", "Graph"]  # fmt: skip
DATA_FORMAT = 2
COUNTERS = slice(4, 10)

# Rows of the small table beside the plot.
API_SKIP = 1
OVERLAP = 2
BUFFER_OVERFLOW = 4


class AcquisitionTest(WindowTest):
    def test_setup_switches_the_mode(self):
        self.start(1280, 900, "every-loss")
        throughput = self.headers()
        self.assertIn("Average\nthroughput [MB/s]", throughput)

        dialog = self.open_setup()
        self.check_enabled(dialog, True)
        mode = dialog.find("combo box", "Data Throughput measurement")
        self.choose_next(mode, "Standard Sensor Acquisition")
        self.check_enabled(dialog, False)
        self.screen.screenshot("acquisition-1-setup")
        self.leave(dialog, "Cancel")
        self.assertEqual(self.headers(), throughput)

        dialog = self.open_setup()
        self.check_enabled(dialog, True)  # the cancelled choice is forgotten
        mode = dialog.find("combo box", "Data Throughput measurement")
        self.choose_next(mode, "Standard Sensor Acquisition")
        self.leave(dialog, "OK")
        wait_for(lambda: self.headers() == HEADERS, "the columns of acquisition mode")
        self.assertEqual(self.statuses(), ["Stopped"])
        self.screen.screenshot("acquisition-2-mode")
        self.close()

    def check_enabled(self, dialog, throughput):
        """The controls that matter in throughput mode only, and the others."""
        for role, name in (
            ("spin button", "Sample period:"),
            ("label", "Sample period:"),
            ("label", "Bytes"),
            ("check box", "Reset calculated buffer level after each frame"),
        ):
            self.assertEqual(dialog.find(role, name).enabled, throughput, name)
        for role, name in (
            ("spin button", "Capacity:"),
            ("spin button", "Refresh period:"),
            ("combo box", "Camera"),
        ):
            self.assertTrue(dialog.find(role, name).enabled, name)

    def test_counters_move_and_are_drawn(self):
        self.store(DTGTMeasMode=1)
        self.start(1280, 900, "every-loss")
        self.assertEqual(self.headers(), HEADERS)
        self.assertEqual(self.counters(), ["-"] * 6)
        self.start_all()
        wait_for(lambda: all(text.isdigit() and int(text) > 0 for text in self.counters()), "every counter above 0")
        before = [int(text) for text in self.counters()]

        def moved():
            return all(int(now) > then for now, then in zip(self.counters(), before))

        wait_for(moved, "every counter to move on")
        self.check_curves()
        self.stop_all()
        self.screen.screenshot("acquisition-6-stopped")
        self.show_last_columns()
        self.screen.screenshot("acquisition-7-last-columns")
        # Plots go and come as in the other mode.
        place = self.plot_box()
        self.screen.click(self.program.cell(self.table, 0, HEADERS.index("Graph")))
        wait_for(lambda: near(self.screen.picture(place), YELLOW) == 0, "the plot to go")
        self.screen.screenshot("acquisition-8-no-plot")
        self.screen.click(self.program.cell(self.table, 0, HEADERS.index("Graph")))
        self.press("Refresh")
        wait_for(lambda: self.drawn(YELLOW), "the plot to come back")
        self.close()

    def counters(self):
        return self.rows()[0][COUNTERS]

    def check_curves(self):
        """Large counters hide small ones at the foot of the axis: take the large
        ones away to see the others. Two that are always equal hide each other."""
        wait_for(lambda: self.drawn(YELLOW) and self.drawn(RED) and self.drawn(PALE_BLUE), "three curves")
        self.screen.screenshot("acquisition-3-all-curves")
        self.toggle(OVERLAP, API_SKIP)
        wait_for(lambda: not self.drawn(YELLOW) and not self.drawn(RED), "two curves to go")
        wait_for(lambda: self.drawn(ORANGE) and self.drawn(VIOLET), "the small counters")
        self.screen.screenshot("acquisition-4-small-counters")
        self.toggle(BUFFER_OVERFLOW)
        wait_for(lambda: self.drawn(GREEN) and not self.drawn(VIOLET), "the curve behind the last one")
        self.screen.screenshot("acquisition-5-one-less")
        self.toggle(OVERLAP, API_SKIP, BUFFER_OVERFLOW)
        wait_for(lambda: self.drawn(YELLOW) and self.drawn(RED), "all curves again")

    def drawn(self, colour):
        return near(self.graph(), colour) > 60

    def toggle(self, *rows):
        for row in rows:
            self.screen.click(self.program.cell(self.plot_choice(), row, 0))

    def plot_choice(self):
        """The table that shows and hides curves."""
        for table in self.program.root.find_all("table"):
            if self.program.cells(table)[-1:] == [["", "FPS"]]:
                return table
        raise AssertionError("no table of curves")

    def test_the_data_format_follows_both_ways(self):
        self.store(DTGTMeasMode=1)
        self.start(1280, 900, "every-loss")
        self.screen.click(self.program.find("page tab", "Parameters"))
        self.parameters = wait_for(self.parameter_tree, "the camera's parameters")
        self.assertEqual(self.panel_format(), "RAW 8")
        first = self.format_picture()

        # From the row to the panel: two down.
        self.screen.click(self.program.cell(self.table, 0, DATA_FORMAT))
        self.screen.screenshot("format-1-row")
        self.screen.key("Down", "Down", "Return")
        wait_for(lambda: self.panel_format() == "MONO 8", "the panel to follow the row")
        third = self.format_picture()
        self.assertGreater(differing(first, third), 20)
        self.screen.screenshot("format-2-panel-followed")

        # From the panel to the row: one up, then another one.
        self.change_in_panel("Up", "RAW 16", "format-3-panel")
        wait_for(lambda: differing(third, self.format_picture()) > 20, "the row to follow the panel")
        second = self.format_picture()
        self.assertGreater(differing(first, second), 20)
        self.screen.screenshot("format-4-row-followed")
        self.change_in_panel("Up", "RAW 8", "format-5-panel")
        # The row shows the very text that it began with.
        wait_for(lambda: differing(first, self.format_picture()) == 0, "the row's first format")
        self.assertEqual(self.panel_format(), "RAW 8")

        # While it is measured the camera is the plug-in's.
        self.start_all()
        taken = "A plug-in measures with this camera: nothing can be changed now."
        self.program.find("label", taken)
        self.screen.screenshot("format-6-taken")
        self.stop_all()
        self.program.gone("label", taken)
        self.assertEqual(self.panel_format(), "RAW 8")
        self.close()

    def parameter_tree(self):
        for tree in self.program.root.find_all("tree"):
            if any(row[0] == "imgdataformat" for row in self.program.cells(tree)):
                return tree
        return None

    def format_row(self):
        names = [row[0] for row in self.program.cells(self.parameters)]
        return names.index("imgdataformat")

    def panel_format(self):
        return self.program.cell(self.parameters, self.format_row(), 1).name

    def change_in_panel(self, key, name, shot):
        self.screen.click(self.program.cell(self.parameters, self.format_row(), 1), times=2)
        self.screen.key("alt+Down", key)
        self.screen.screenshot(shot)
        self.screen.key("Return")
        wait_for(lambda: self.panel_format() == name, f"{name} in the panel")

    def format_picture(self):
        """The text in the row's box; the bus does not name widgets in cells."""
        self.screen.point_at(2, 2)
        x, y, width, height = self.program.cell(self.table, 0, DATA_FORMAT).box
        return self.screen.picture((x + 5, y + 5, width - 25, height - 10))


if __name__ == "__main__":
    unittest.main()
