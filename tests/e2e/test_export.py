"""Reports and pictures of what was measured, as files and in the clipboard."""

import os
import threading
import time
import unittest

from PIL import Image

from desktop import wait_for
from window import ORANGE, WindowTest, differing, near

SAVE_REPORT = "Select Output File for Measured Data"
PROGRESS = "Data throughput monitor"
THROUGHPUT_HEADER = (
    "Frame number,Frame Computer Timestamp [μs],Sample Time [ns], Offset[B], Data Time Stamp [ns], "
    "Req. throughput [MB/s], Link throughput [MB/s], Buffer filled [B], Max buffer level [%]"
)
ACQUISITION_HEADER = (
    "Frame number,Timestamp [μs],Computer Timestamp [μs],"
    "Transport skip,API skip,Missed trg. overlap,Missed trg overflow,Buffer overflow"
)
DAY = 24 * 60 * 60 * 1_000_000  # microseconds
TICK = 4  # nanoseconds of a camera's clock


def lines_of(text):
    """The whole lines of a report."""
    assert text.endswith("\n") and "\r" not in text
    return text[:-1].split("\n")


def rows_of(text):
    return [line.split(",") for line in lines_of(text)[1:]]


class SlowPipe:
    """A file that takes what is written to it little by little, until hurry()."""

    def __init__(self, path):
        os.mkfifo(path)
        self.content = b""
        self.calm = threading.Event()
        # Without blocking: the writer comes later, and must find a reader.
        self.end = os.open(path, os.O_RDONLY | os.O_NONBLOCK)
        self.thread = threading.Thread(target=self._read)
        self.stopped = False

    def start(self):
        self.thread.start()

    def hurry(self):
        self.calm.set()

    def _read(self):
        started = False
        while not self.stopped:
            try:
                part = os.read(self.end, 16384)
            except BlockingIOError:
                part = None  # a writer that has nothing now
                started = True
            if part:
                started = True
                self.content += part
                self.calm.wait(0.01)
            elif part == b"" and started:
                break
            else:
                time.sleep(0.01)
        os.close(self.end)

    def whole(self):
        """All that was written, once the writer has closed it."""
        wait_for(lambda: not self.thread.is_alive(), "the end of the slow file")
        return self.content.decode("utf-8")

    def stop(self):
        self.stopped = True
        self.thread.join()


class ExportTest(WindowTest):
    def export(self, row, column, path):
        self.screen.click(self.program.cell(self.table, row, column))
        self.save_as(SAVE_REPORT, path)

    def report(self, row, column, name):
        """The report of a camera, exported by hand."""
        path = self.path(name)
        self.export(row, column, path)
        return self.written(path)

    def written(self, path):
        # The first bytes come when the progress shows, or has gone.
        wait_for(lambda: os.path.exists(path) and os.path.getsize(path) > 0, path)
        self.program.gone("dialog", PROGRESS)
        with open(path, encoding="utf-8", newline="") as file:
            return file.read()

    def test_reports_of_both_modes(self):
        # Few samples of a frame, or the report has a million lines.
        self.store(DTGTSamplePeriod=51200)
        self.start(1280, 900, "two-400MBps")
        export = self.headers().index("Export data")
        self.screen.click(self.program.cell(self.table, 0, export))
        self.screen.click(self.message("No measured data to export.").find("push button", "OK"))
        self.program.gone("dialog", "Export Measured Data")

        self.measure_for_a_while()
        self.screen.click(self.program.cell(self.table, 0, export))
        path = self.path("left of two.csv")
        self.type_into(SAVE_REPORT, path)
        self.screen.screenshot("export-1-file-dialog")
        self.screen.key("Return")
        self.check_throughput(self.written(path))
        self.screen.screenshot("export-2-exported")

        self.leave_for_acquisition()
        export = self.headers().index("Export data")
        self.show_last_columns()
        # Here there is a header to write without any record.
        self.assertEqual(self.report(1, export, "none.csv"), ACQUISITION_HEADER + "\n")
        self.start_all()
        wait_for(lambda: all(int(row[4]) > 60 for row in self.rows()), "a second's frames")
        self.stop_all()
        self.check_acquisition(self.report(1, export, "right.csv"), [int(text) for text in self.rows()[1][4:10]])
        self.screen.screenshot("export-3-both-modes")
        self.close()

    def message(self, text):
        def box():
            for role in ("dialog", "alert"):
                for dialog in self.program.root.find_all(role):
                    if dialog.find("label", text):
                        return dialog
            return None

        return wait_for(box, text)

    def leave_for_acquisition(self):
        dialog = self.open_setup()
        self.choose_next(dialog.find("combo box", "Data Throughput measurement"), "Standard Sensor Acquisition")
        self.leave(dialog, "OK")
        wait_for(lambda: "Data Format" in self.headers(), "acquisition mode")

    def check_throughput(self, text):
        self.assertEqual(lines_of(text)[0], THROUGHPUT_HEADER)
        rows = rows_of(text)
        self.assertGreater(len(rows), 3000)
        self.assertEqual({len(row) for row in rows}, {9})
        frames = [int(row[0]) for row in rows]
        self.assertEqual(frames, sorted(frames))
        self.assertGreater(len(set(frames)), 20)
        size = 2048 * 2048 * 2  # bytes of a frame of transport data
        start = {}
        for frame, computer, sample, offset, stamp, required, link, buffer, level in rows:
            self.assertTrue(0 <= int(computer) < 2 * DAY)
            self.assertTrue(0 < int(offset) < size)
            self.assertEqual(int(offset) % 51200, 0)
            self.assertEqual(required, "360")
            # A link of 400 MB/s, and what the ticks hide of it.
            self.assertAlmostEqual(float(link), 400, delta=2)
            self.assertAlmostEqual(int(sample) / int(offset), 1000 / 400, delta=0.01)
            # Faster than the sensor: nothing stays in the buffer.
            self.assertEqual((buffer, level), ("0", "0"))
            # The first stamp of a frame, as each of its rows tells it.
            self.assertEqual(start.setdefault(frame, int(stamp) - int(sample)) + int(sample), int(stamp))
            self.assertEqual(int(stamp) % TICK, 0)

    def check_acquisition(self, text, counters):
        self.assertEqual(lines_of(text)[0], ACQUISITION_HEADER)
        rows = [[int(value) for value in row] for row in rows_of(text)]
        self.assertGreater(len(rows), 60)
        self.assertEqual({len(row) for row in rows}, {8})
        for before, row in zip(rows, rows[1:]):
            self.assertGreater(row[0], before[0])
            # Triggers come every 1/60 s, on the camera's clock exactly.
            passed = (row[0] - before[0]) * 1e6 / 60
            self.assertAlmostEqual(row[1] - before[1], passed, delta=2)
            self.assertGreater(row[2], before[2])
            for value, last in zip(row[3:], before[3:]):
                self.assertGreaterEqual(value, last)
        # The table shows what the camera counted after the last record, too.
        for value, shown in zip(rows[-1][3:], counters[1:]):
            self.assertLessEqual(value, shown)

    def test_a_report_that_is_ended_early(self):
        self.store(DTGTSamplePeriod=4096)
        self.start(1280, 900, "two-400MBps")
        export = self.headers().index("Export data")
        self.measure_for_a_while()
        path = self.path("slow.csv")
        pipe = SlowPipe(path)
        pipe.start()
        self.addCleanup(pipe.stop)
        self.export(0, export, path)
        self.press("Yes")  # it exists and may be replaced
        # From here to the end of the export the program seldom answers the bus.
        wait_for(lambda: self.screen.window_in_front(PROGRESS), "the progress")
        wait_for(lambda: len(pipe.content) > 1_000_000, "a part of the report")
        self.screen.screenshot("export-4-progress")
        self.screen.key("alt+F4")
        wait_for(lambda: not self.screen.has_window(PROGRESS), "the end of the progress")
        pipe.hurry()
        part = pipe.whole()
        self.screen.screenshot("export-5-ended-early")
        self.assertEqual({len(row) for row in rows_of(part)}, {9})

        # The window goes on, and what was measured is all there.
        whole = self.report(0, export, "whole.csv")
        self.assertLess(len(lines_of(part)), len(lines_of(whole)))
        self.assertTrue(whole.startswith(part))
        self.start_all()
        self.stop_all()
        self.close()

    def test_a_report_that_cannot_be_written(self):
        self.store(DTGTMeasMode=1)
        self.start(1280, 900, "1")
        export = self.headers().index("Export data")
        self.show_last_columns()
        missing = self.path("missing/report.csv")
        self.export(0, export, missing)
        self.program.gone("dialog", SAVE_REPORT)
        self.screen.click(self.program.find("page tab", "Log"))
        log = self.log_with("Cannot open")
        self.assertIn(f"CxCameraLineData::exportDataToFile(): Cannot open {missing}: No such file or directory", log)
        self.assertTrue(self.no_dialog())
        self.screen.screenshot("export-6-refused")
        self.screen.click(self.program.find("page tab", "Data Throughput Graph"))
        self.show_last_columns()
        self.assertEqual(self.report(0, export, "report.csv"), ACQUISITION_HEADER + "\n")
        self.close()

    def log_with(self, text):
        def lines():
            for table in self.program.root.find_all("table"):
                if table.showing:
                    for row in self.program.cells(table):
                        for cell in row:
                            if text in cell:
                                return cell
            return None

        return wait_for(lines, f"a line in the log with {text!r}")

    def test_pictures_to_file_and_clipboard(self):
        self.start(1280, 900, "2")
        self.measure_for_a_while()
        self.press("Refresh")  # with what came after the last refresh
        shown = self.settled()

        self.choose_target("To File...", "export-7-menu")
        self.type_into("Export Image", self.path("graph"))
        self.screen.screenshot("export-8-image-dialog")
        self.screen.key("Return")
        path = self.path("graph.png")  # the dialog's first format
        wait_for(lambda: os.path.exists(path), path)
        with Image.open(path) as image:
            self.assertEqual(image.format, "PNG")
            saved = image.convert("RGB")
        self.check_picture(saved, shown)
        saved.save(os.path.join(os.environ["VELMORA_SHOTS"], "export-9-picture.png"))

        self.choose_target("To Clipboard", "export-10-menu")
        copied = wait_for(self.screen.clipboard_picture, "a picture in the clipboard")
        self.assertEqual(copied.size, saved.size)
        self.assertEqual(differing(copied, saved), 0)

        # The button itself does the same once more, with what is shown now.
        x, y, width, height = self.plot_box()
        self.screen.wheel_up((x + width - 120, y + height // 4), times=4)
        zoomed = self.settled()
        self.press("Export Graph")
        wait_for(lambda: differing(self.screen.clipboard_picture(), copied) > 1000, "another picture in the clipboard")
        self.check_picture(self.screen.clipboard_picture(), zoomed)
        self.close()

    def choose_target(self, name, shot):
        self.open_export_menu()
        self.screen.screenshot(shot)
        self.screen.click(self.program.find("menu item", name))

    def check_picture(self, picture, shown):
        """It is what is on the screen, but for the smoothing of letters."""
        self.assertEqual(picture.size, shown.size)
        self.assertEqual(near(picture, ORANGE), near(shown, ORANGE))
        self.assertGreater(near(picture, ORANGE), 200)
        self.assertLess(differing(picture, shown), shown.width * shown.height // 50)


if __name__ == "__main__":
    unittest.main()
