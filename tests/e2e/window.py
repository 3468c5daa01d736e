"""The viewer with the plug-in's window, as the tests find their way in it."""

import os
import tempfile
import unittest

from PIL import Image, ImageChops

from desktop import Program, Screen, wait_for

ORANGE = (255, 165, 0)  # "Min throughput", "Transport skip"
BLUE = (30, 144, 255)  # "Max buffer level", blended with what lies behind

DIALOGS = ("dialog", "alert")


def near(picture, colour, tolerance=40):
    """How many pixels have about that colour."""
    count = 0
    for amount, pixel in picture.getcolors(picture.width * picture.height):
        if all(abs(a - b) <= tolerance for a, b in zip(pixel, colour)):
            count += amount
    return count


def differing(first, second):
    """How many pixels of two pictures of one size differ."""
    difference = ImageChops.difference(first, second).convert("L")
    return sum(difference.histogram()[1:])


def width_of(picture, colour, tolerance=40):
    """How many columns lie between the first and the last pixel of about that colour."""
    difference = ImageChops.difference(picture, Image.new("RGB", picture.size, colour))
    mask = Image.new("L", picture.size, 255)
    for channel in difference.split():
        mask = ImageChops.darker(mask, channel.point(lambda value: 255 if value <= tolerance else 0))
    box = mask.getbbox()
    return box[2] - box[0] if box else 0


class WindowTest(unittest.TestCase):
    """A screen, the viewer on it, and the camera table in its window."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.settings = self.path("velmora.ini")

    def tearDown(self):
        # What the screen looked like when something was missed.
        self.screen.screenshot("last-" + self._testMethodName)

    def path(self, name):
        return os.path.join(self.folder.name, name)

    def store(self, **values):
        """Settings of the plug-in for the next start."""
        with open(self.settings, "w", encoding="utf-8") as file:
            file.write("[DataThroughputGraphPlugin]\n")
            file.writelines(f"{key}={value}\n" for key, value in values.items())

    def stored(self):
        """The plug-in's settings as the last run left them."""
        values = {}
        group = ""
        with open(self.settings, encoding="utf-8") as file:
            for line in file.read().splitlines():
                if line.startswith("["):
                    group = line
                elif group == "[DataThroughputGraphPlugin]" and "=" in line:
                    key, value = line.split("=", 1)
                    values[key] = value
        return values

    # Start and end

    def start(self, width, height, cameras="2"):
        self.open_screen(width, height)
        self.start_viewer(cameras)

    def open_screen(self, width, height):
        self.screen = Screen(width, height)
        self.addCleanup(self.screen.__exit__)  # of a half-made one, too
        self.screen.__enter__()

    def start_viewer(self, cameras, start_all="Start All", variables=None):
        self.program = Program(
            self.screen, "--simulate", cameras, "--open-all", "--settings", self.settings, variables=variables
        )
        self.program.find("push button", start_all)
        self.table = self.camera_table()

    def close(self):
        wait_for(lambda: self.screen.window_in_front("Velmora"), "the viewer in front")
        self.screen.key("ctrl+q")
        self.assertEqual(self.program.wait_for_end(), 0, self.program.output())
        self.assertTrue(os.path.exists(self.settings))

    # The table

    def camera_table(self):
        """The only one on the screen with so many columns."""

        def table_with_cameras():
            for table in self.program.root.find_all("table"):
                if len(table.find_all("table column header")) == 12:
                    return table
            return None

        return wait_for(table_with_cameras, "the camera table")

    def headers(self):
        self.table.node.clear_cache()
        return [header.name for header in self.table.find_all("table column header")]

    def rows(self):
        return self.program.cells(self.table)

    def statuses(self):
        return [row[1] for row in self.rows()]

    def show_last_columns(self):
        x, y, width, height = self.table.box
        # Over a header: a combo box would keep the wheel's turns to itself.
        self.screen.wheel_right((x + 60, y + 10), times=30)

        def in_sight():
            left, _, wide, _ = self.program.cell(self.table, 0, 11).box
            return left + wide <= x + width

        wait_for(in_sight, "the last column in sight")

    # Buttons

    def press(self, name):
        self.screen.click(self.program.find("push button", name))

    def start_all(self):
        self.press("Start All")
        self.program.find("push button", "Stop All")
        wait_for(lambda: set(self.statuses()) == {"Testing"}, "all cameras measuring")

    def stop_all(self):
        self.press("Stop All")
        self.program.find("push button", "Start All")
        wait_for(lambda: set(self.statuses()) == {"Stopped"}, "all cameras stopped")

    def no_dialog(self):
        return not any(self.program.root.find(role) for role in DIALOGS)

    # The plot

    def plot_box(self):
        """The plot has no name; it begins beside its topmost button."""
        top = self.program.find("push button", "Reset Zoom").box[1]
        left = self.table.box[0]
        plots = [w.box for w in self.program.root.find_all("filler") if w.box[:2] == (left, top)]
        return max(plots, key=lambda box: box[2] * box[3])

    def graph(self):
        """The plot without its surroundings, the pointer out of the way."""
        self.screen.point_at(2, 2)
        return self.screen.picture(self.plot_box())

    def settled(self):
        """The plot once two pictures in a row are the same."""
        last = self.graph()

        def unchanged():
            nonlocal last
            now = self.graph()
            same = differing(last, now) == 0
            last = now
            return same

        wait_for(unchanged, "a plot that stands still")
        return last

    def measure_for_a_while(self):
        """So long that the curves cover about two of the twenty seconds in view."""
        self.start_all()
        wait_for(lambda: width_of(self.graph(), ORANGE) > 100, "curves of two seconds")
        self.stop_all()

    def middle_of_upper_plot(self):
        x, y, width, height = self.plot_box()
        return x + width // 2, y + height // 4

    def open_export_menu(self):
        x, y, width, height = self.program.find("push button", "Export Graph").box
        self.screen.click((x + width - 7, y + height // 2))  # the arrow
        self.program.find("menu item", "To File...")

    # Dialogs

    def open_setup(self):
        self.press("Setup...")
        return self.program.find("dialog", "Data Throughput Test Setup")

    def choose_next(self, combo_box, name):
        """Opens the list of a combo box and goes one down."""
        self.screen.click(combo_box)
        self.screen.key("Down", "Return")
        wait_for(lambda: combo_box.name == name, name)

    def leave(self, dialog, button):
        title = dialog.name
        self.screen.click(dialog.find("push button", button))
        self.program.gone("dialog", title)

    def save_as(self, title, path):
        """Answers the toolkit's own file dialog."""
        self.type_into(title, path)
        self.screen.key("Return")

    def type_into(self, title, path):
        wait_for(lambda: self.screen.window_in_front(title), f"{title} in front")
        edit = self.program.find("dialog", title).find("text", "File name:")
        self.screen.key("ctrl+a")
        self.screen.type(path)
        wait_for(lambda: edit.text == path, f"{path} in the dialog")
