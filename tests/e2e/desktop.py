"""A screen with a window manager, and a program on it used by mouse and keyboard."""

import io
import os
import signal
import subprocess
import tempfile
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402
from PIL import Image  # noqa: E402

PATIENCE = 40.0  # seconds until something that must come is missed


def plain_environment():
    """This one without the user's language and desktop: texts are English and
    the toolkit's own dialogs and style are shown."""
    environment = {name: value for name, value in os.environ.items() if not name.startswith("LC_")}
    for name in ("LANGUAGE", "XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "KDE_FULL_SESSION",
                 "GNOME_DESKTOP_SESSION_ID", "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE",
                 "WAYLAND_DISPLAY"):  # fmt: skip
        environment.pop(name, None)
    return {**environment, "LANG": "C.UTF-8"}


def wait_for(condition, what, patience=PATIENCE):
    """The first true value of `condition`, looked at ten times a second."""
    end = time.monotonic() + patience
    while True:
        while GLib.MainContext.default().iteration(False):
            pass  # news of the accessibility bus
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"still waiting for {what}")
        time.sleep(0.1)


class Widget:
    """A thing on the screen as the accessibility bus names it."""

    def __init__(self, node):
        self.node = node

    @property
    def name(self):
        self.node.clear_cache()
        return self.node.get_name()

    @property
    def role(self):
        return self.node.get_role_name()

    @property
    def text(self):
        """What stands in an edit."""
        self.node.clear_cache()
        return Atspi.Text.get_text(self.node, 0, -1)

    @property
    def value(self):
        """The number in a spin box."""
        self.node.clear_cache()
        return Atspi.Value.get_current_value(self.node)

    def has(self, state):
        self.node.clear_cache()
        return self.node.get_state_set().contains(state)

    @property
    def enabled(self):
        return self.has(Atspi.StateType.ENABLED)

    @property
    def checked(self):
        return self.has(Atspi.StateType.CHECKED)

    @property
    def showing(self):
        return self.has(Atspi.StateType.SHOWING)

    @property
    def box(self):
        """x, y, width, height on the screen."""
        self.node.clear_cache()
        extents = self.node.get_extents(Atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height

    def centre(self):
        """Its middle, once it stays where it is."""
        last = None

        def at_rest():
            nonlocal last
            now = self.box
            same = now == last
            last = now
            return same

        wait_for(at_rest, f"{self.name!r} to come to rest")
        x, y, width, height = last
        return x + width // 2, y + height // 2

    def walk(self, into_tables=True):
        """Itself and everything within, outermost first."""
        yield self
        if not into_tables and self.role in ("table", "tree table", "tree", "list", "menu bar"):
            return  # thousands of cells, each a question to the program
        try:
            count = self.node.get_child_count()
            for index in range(count):
                child = self.node.get_child_at_index(index)
                if child is not None:
                    yield from Widget(child).walk(False)
        except GLib.Error:
            return  # it went away while we looked

    def find_all(self, role, name=None):
        found = []
        for widget in self.walk():
            try:
                if widget.role == role and (name is None or widget.name == name):
                    found.append(widget)
            except GLib.Error:
                continue
        return found

    def find(self, role, name=None):
        found = [widget for widget in self.find_all(role, name) if widget.showing]
        return found[0] if found else None


class Screen:
    """An X server of its own. Use as a context manager."""

    def __init__(self, width, height):
        self.size = (width, height)
        self.processes = []
        self.pointer = None
        self.environment = plain_environment()

    def __enter__(self):
        with tempfile.TemporaryFile("w+") as display:
            self._start(
                # Without a reset when the last client leaves: that may be the question
                # for the window manager, while the manager is just coming.
                ["Xvfb", "-noreset", "-displayfd", str(display.fileno()),
                 "-screen", "0", "{}x{}x24".format(*self.size)],
                pass_fds=[display.fileno()],
            )

            def number():
                display.seek(0)
                return display.read().strip()

            self.environment["DISPLAY"] = ":" + wait_for(number, "the X server")
        self.manager = self._start(["openbox"])
        wait_for(self._is_managed, "the window manager")
        os.environ["DISPLAY"] = self.environment["DISPLAY"]
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.terminate()
                try:
                    process.wait(PATIENCE)
                except subprocess.TimeoutExpired:
                    process.kill()
                    process.wait()

    def check_managed(self):
        if self.manager.poll() is not None:
            raise AssertionError(f"the window manager ended with {self.manager.returncode}")

    def _is_managed(self):
        self.check_managed()
        answer = subprocess.run(
            ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=self.environment, capture_output=True, text=True
        )
        return "window id" in answer.stdout

    def _start(self, command, **options):
        process = subprocess.Popen(
            command, env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options
        )
        self.processes.append(process)
        return process

    def start(self, command, log, variables):
        process = subprocess.Popen(command, env={**self.environment, **variables}, stdout=log, stderr=log)
        self.processes.append(process)
        return process

    def xdotool(self, *arguments):
        done = subprocess.run(
            ["xdotool", *map(str, arguments)], env=self.environment, check=True, capture_output=True, text=True
        )
        return done.stdout.strip()

    def point_at(self, x, y):
        # Waiting for a move to where the pointer is already takes 15 seconds.
        if (x, y) != self.pointer:
            self.xdotool("mousemove", "--sync", x, y)
        self.pointer = (x, y)

    def click(self, where, button=1, times=1):
        self.point_at(*(where.centre() if isinstance(where, Widget) else where))
        self.xdotool("click", "--repeat", times, "--delay", 60, button)

    def drag(self, start, end):
        self.point_at(*start)
        self.xdotool("mousedown", 1)
        steps = 8
        for step in range(1, steps + 1):
            self.point_at(
                start[0] + (end[0] - start[0]) * step // steps, start[1] + (end[1] - start[1]) * step // steps
            )
        self.xdotool("mouseup", 1)

    def wheel_right(self, where, times=1):
        self.click(where, button=7, times=times)

    def wheel_up(self, where, times=1):
        self.click(where, button=4, times=times)

    def key(self, *keys):
        self.xdotool("key", "--delay", 40, *keys)

    def type(self, text):
        self.xdotool("type", "--delay", 30, text)

    def window_in_front(self, title):
        """Whether the keys go to a window of that title. Asks the X server only,
        so the program may be busy."""
        return self._query("getwindowfocus", "getwindowname") == title

    def has_window(self, title):
        return bool(self._query("search", "--onlyvisible", "--name", f"^{title}$"))

    def _query(self, *arguments):
        """Empty where nothing is found."""
        done = subprocess.run(["xdotool", *arguments], env=self.environment, capture_output=True, text=True)
        return done.stdout.strip()

    def clipboard_picture(self):
        """None while the clipboard holds none."""
        done = subprocess.run(
            ["xclip", "-selection", "clipboard", "-t", "image/png", "-o"], env=self.environment, capture_output=True
        )
        return Image.open(io.BytesIO(done.stdout)).convert("RGB") if done.stdout else None

    def picture(self, box=None):
        """What is on the screen, or on a part of it."""
        with tempfile.NamedTemporaryFile(suffix=".png") as file:
            subprocess.run(
                ["/usr/bin/import", "-window", "root", file.name], env=self.environment, check=True, capture_output=True
            )
            image = Image.open(file.name).convert("RGB")
            image.load()
        if box:
            x, y, width, height = box
            image = image.crop((x, y, x + width, y + height))
        return image

    def screenshot(self, name):
        image = self.picture()
        image.save(os.path.join(os.environ["VELMORA_SHOTS"], name + ".png"))
        return image


class LateAccessibility:
    """A session bus for one program, on which the accessibility bus that is there
    already appears when announce() is called.

    Qt joins the accessibility bus when it appears, not one that it finds: without
    this a program that is started a second time would stay unseen."""

    INTERFACE = """<node><interface name="org.a11y.Bus">
        <method name="GetAddress"><arg type="s" direction="out"/></method>
    </interface></node>"""

    def __init__(self, screen):
        session = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        self.accessibility = session.call_sync(
            "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress",
            None, None, Gio.DBusCallFlags.NONE, -1, None,
        ).unpack()[0]  # fmt: skip
        with tempfile.TemporaryFile("w+") as file:
            screen._start(
                ["dbus-daemon", "--session", "--nofork", f"--print-address={file.fileno()}"], pass_fds=[file.fileno()]
            )

            def printed():
                file.seek(0)
                return file.read().strip()

            self.address = wait_for(printed, "a session bus")
        flags = Gio.DBusConnectionFlags
        self.connection = Gio.DBusConnection.new_for_address_sync(
            self.address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None
        )
        self.connection.set_exit_on_close(False)

    def announce(self):
        interface = Gio.DBusNodeInfo.new_for_xml(self.INTERFACE).interfaces[0]
        self.connection.register_object("/org/a11y/bus", interface, self._answer, None, None)
        Gio.bus_own_name_on_connection(self.connection, "org.a11y.Bus", Gio.BusNameOwnerFlags.NONE, None, None)

    def _answer(self, connection, sender, path, interface, method, parameters, invocation):
        invocation.return_value(GLib.Variant("(s)", (self.accessibility,)))


class Program:
    """A program that shows itself on the accessibility bus."""

    started = False  # by this process, once

    def __init__(self, screen, *arguments, variables=None):
        self.screen = screen
        self.log = tempfile.TemporaryFile("w+")  # closed with the object
        late = LateAccessibility(screen) if Program.started else None
        variables = {**({"DBUS_SESSION_BUS_ADDRESS": late.address} if late else {}), **(variables or {})}
        self.process = screen.start([os.environ["VELMORA"], *arguments], self.log, variables)
        wait_for(self._has_window, "the program's window")
        time.sleep(1)  # the window manager gives it its place
        # Qt joins the accessibility bus when it appears, not one that is there.
        if late:
            late.announce()
        else:
            Atspi.init()
        Program.started = True
        self.root = wait_for(self._application, "the program on the accessibility bus")

    def _has_window(self):
        self._check_alive()
        self.screen.check_managed()
        found = subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--pid", str(self.process.pid)],
            env=self.screen.environment, capture_output=True,
        )  # fmt: skip
        return found.returncode == 0

    def _check_alive(self):
        if self.process.poll() is not None:
            raise AssertionError(f"the program ended at once: {self.output()}")

    def _application(self):
        self._check_alive()
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            node = desktop.get_child_at_index(index)
            if node is not None and node.get_process_id() == self.process.pid:
                return Widget(node)
        return None

    def find(self, role, name=None):
        """The widget once it shows."""
        return wait_for(lambda: self.root.find(role, name), f"{role} {name!r}")

    def gone(self, role, name):
        wait_for(lambda: not self.root.find(role, name), f"the end of {role} {name!r}")

    def cells(self, table):
        """Texts of a table's body by row and column."""
        table.node.clear_cache()
        rows, columns = Atspi.Table.get_n_rows(table.node), Atspi.Table.get_n_columns(table.node)
        return [[self.cell(table, row, column).name for column in range(columns)] for row in range(rows)]

    def cell(self, table, row, column):
        return Widget(Atspi.Table.get_accessible_at(table.node, row, column))

    def wait_for_end(self):
        return self.process.wait(PATIENCE)

    def terminate(self):
        self.process.send_signal(signal.SIGTERM)

    def output(self):
        self.log.seek(0)
        return self.log.read()
