"""What a user sets up is back after the next start."""

import unittest

from desktop import wait_for
from window import WindowTest, differing

CAMERAS = "2"


class SettingsTest(WindowTest):
    def test_settings_come_back(self):
        self.start(1280, 900, CAMERAS)
        dialog = self.open_setup()
        self.set_up(dialog)
        self.screen.screenshot("settings-1-setup")
        self.leave(dialog, "OK")
        wait_for(lambda: "Data Format" in self.headers(), "acquisition mode")
        self.screen.click(self.program.find("check box", "Live Graph"))
        self.open_export_menu()
        self.screen.click(self.program.find("menu item", "To Clipboard"))
        wait_for(self.screen.clipboard_picture, "a picture in the clipboard")
        plain = self.settled()
        self.screen.wheel_up(self.middle_of_upper_plot(), times=4)
        self.assertGreater(differing(plain, self.settled()), 1000)
        self.screen.screenshot("settings-2-before-the-end")
        self.close()
        self.assertEqual(
            self.stored(),
            {
                "DTGTSamplePeriod": "5120",
                "DTGTMaxSamples": "25000000",
                "DTGTResetBufferLevel": "false",
                "DTGTTimestampOrigin": "1",
                "DTGTExportType": "2",
                "DTGTMeasMode": "1",
                "DTGTLiveGraph": "0",
            },
        )

        self.start_viewer(CAMERAS)
        self.assertIn("Data Format", self.headers())
        self.assertFalse(self.program.find("check box", "Live Graph").checked)
        self.check_export_target()
        # The view begins with the last 20 seconds again. Which of two crossing
        # grid lines is above is a matter of chance.
        wait_for(lambda: differing(plain, self.settled()) < 50, "the plot as it was before the zoom")
        dialog = self.open_setup()
        self.screen.screenshot("settings-3-after-the-start")
        self.check(dialog)
        self.leave(dialog, "Cancel")
        self.close()

    def set_up(self, dialog):
        period = dialog.find("spin button", "Sample period:")
        self.assertEqual(period.value, 4096)  # the smallest, above the first setting
        x, y, width, height = period.box
        self.screen.click((x + width - 8, y + height // 4))  # the upper arrow
        wait_for(lambda: period.value == 5120, "a longer sample period")
        self.type_number(dialog.find("spin button", "Capacity:"), 25)
        self.type_number(dialog.find("spin button", "Refresh period:"), 3)
        self.choose_next(dialog.find("combo box", "Camera"), "Computer")
        reset = dialog.find("check box", "Reset calculated buffer level after each frame")
        self.assertTrue(reset.checked)
        x, y, width, height = reset.box
        self.screen.click((x + 8, y + height // 2))
        wait_for(lambda: not reset.checked, "the box to be clear")
        self.choose_next(dialog.find("combo box", "Data Throughput measurement"), "Standard Sensor Acquisition")

    def type_number(self, spin_box, number):
        x, y, width, height = spin_box.box
        self.screen.click((x + 15, y + height // 2))
        self.screen.key("ctrl+a")
        self.screen.type(str(number))
        wait_for(lambda: spin_box.value == number, f"{number} in the box")

    def check(self, dialog):
        self.assertTrue(dialog.find("combo box", "Standard Sensor Acquisition"))
        self.assertTrue(dialog.find("combo box", "Computer"))
        for name, value in (("Sample period:", 5120), ("Capacity:", 25), ("Refresh period:", 1)):
            self.assertEqual(dialog.find("spin button", name).value, value, name)
        self.assertFalse(dialog.find("check box", "Reset calculated buffer level after each frame").checked)

    def check_export_target(self):
        self.open_export_menu()
        self.assertTrue(self.program.find("menu item", "To Clipboard").checked)
        self.assertFalse(self.program.find("menu item", "To File...").checked)
        self.screen.key("Escape")
        self.program.gone("menu item", "To Clipboard")


if __name__ == "__main__":
    unittest.main()
