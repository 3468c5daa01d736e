"""The viewer and the plug-in in another language."""

import unittest

from desktop import wait_for
from window import WindowTest


class GermanTest(WindowTest):
    def test_german(self):
        self.open_screen(1280, 900)
        self.start_viewer("every-loss", "Alle starten", {"LANGUAGE": "de"})
        self.assertTrue(self.program.find("page tab", "Kameras"))
        self.assertEqual(self.statuses(), ["Gestoppt"])
        self.assertIn("Mittlerer\nDurchsatz [MB/s]", self.headers())
        self.screen.screenshot("german-1-throughput")

        self.press("Einrichten...")
        dialog = self.program.find("dialog", "Datendurchsatz-Test einrichten")
        mode = dialog.find("combo box", "Datendurchsatz-Messung")
        self.choose_next(mode, "Normale Sensoraufnahme")
        self.screen.screenshot("german-2-setup")
        self.leave(dialog, "OK")
        wait_for(lambda: "Übertragen" in self.headers(), "acquisition mode")

        self.press("Alle starten")
        self.program.find("push button", "Alle stoppen")
        wait_for(lambda: self.statuses() == ["Misst"], "the camera measuring")
        self.screen.screenshot("german-3-measuring")
        self.press("Alle stoppen")
        wait_for(lambda: self.statuses() == ["Gestoppt"], "the camera stopped")
        self.show_last_columns()
        self.screen.screenshot("german-4-last-columns")
        self.close()


if __name__ == "__main__":
    unittest.main()
