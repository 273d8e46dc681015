"""Operates a program as an operator does: finds its widgets by their accessible names, clicks them with real
input events, and reads its boxes."""
import os
import re
import subprocess
from pathlib import Path

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402
from gi.repository import GLib  # noqa: E402

from sandbox import wait_for  # noqa: E402

LIMIT = 25  # seconds for what is immediate on an idle machine
LARGEST_FRAME = 30  # pixels that a window manager draws at a side of a window
MIDDLE = (0.5, 0.5)
UPPER = (0.5, 0.25)  # the upper arrow of a spin control
Role = Atspi.Role


def name_pattern(title):
    """The regular expression that finds a window with this title in xdotool. Letters beyond ASCII match any others,
    since xdotool reads them only in locales that the X library knows."""
    return "^" + re.sub(r"[^\x20-\x7e]+", "[^A-Za-z]+", re.escape(title)) + "$"


class Driver:
    """Drives the programs of one sandbox. Only one for each process, since that connects to the accessibility
    bus once."""

    def __init__(self, sandbox):
        self.sandbox = sandbox
        for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"):
            os.environ[name] = sandbox.environment[name]
        Atspi.init()
        Atspi.set_timeout(2000, 4000)

    # --- finding ----------------------------------------------------------------------------------

    @staticmethod
    def _children(node):
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child:
                child.clear_cache()
                yield child

    def nodes(self, node):
        """A widget and all its descendants."""
        yield node
        for child in self._children(node):
            yield from self.nodes(child)

    @staticmethod
    def _runs(application, program):
        """Judges by the command line, since a stopped program would not answer. If another program runs it, its name is
        an argument."""
        try:
            command = Path(f"/proc/{application.get_process_id()}/cmdline").read_bytes().decode(errors="replace")
        except OSError:
            return False
        return any(Path(word).name == program for word in command.split("\0"))

    def windows(self, program):
        """The windows of a program that are on the screen."""
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for index in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(index)
            try:
                if application is None or not self._runs(application, program):
                    continue
                for window in self._children(application):
                    if self.is_showing(window):
                        yield window
            except GLib.Error:
                continue  # it closed while it was being read

    @staticmethod
    def is_showing(window):
        """False for a window that is listed but has closed: the search must go on after it."""
        try:
            return window.get_state_set().contains(Atspi.StateType.SHOWING)
        except GLib.Error:
            return False

    def find(self, program, name, role, seconds=LIMIT, window=None):
        """Waits for a widget with this accessible name and role, in any window or in that with the title `window`."""
        return self._wait_to_see(lambda: next(
            (node for top in self.windows(program) if window in (None, top.get_name())
             for node in self.nodes(top) if node.get_name() == name and node.get_role() == role), None),
            seconds, f"'{name}' in {program}")

    def window(self, program, title=None, seconds=LIMIT):
        """Waits for a window with this title, or for any."""
        return self._wait_to_see(
            lambda: next((top for top in self.windows(program) if title in (None, top.get_name())), None),
            seconds, f"a window '{title}' of {program}")

    @staticmethod
    def _wait_to_see(look, seconds, what):
        """Waits until `look` finds something; tries again if a widget closes while it is being read."""
        def look_safely():
            try:
                return look()
            except GLib.Error:
                return None
        return wait_for(look_safely, seconds, what)

    def titles(self, program):
        """The titles of a program's windows."""
        try:
            return [top.get_name() for top in self.windows(program)]
        except GLib.Error:
            return []

    def has_window(self, program, title):
        return title in self.titles(program)

    def texts(self, window):
        """The texts of all labels in a window."""
        return [node.get_name() for node in self.nodes(window) if node.get_role() == Role.LABEL]

    def buttons(self, window):
        return [node for node in self.nodes(window) if node.get_role() == Role.PUSH_BUTTON]

    @staticmethod
    def _has(node, state):
        node.clear_cache()
        return node.get_state_set().contains(state)

    def is_enabled(self, node):
        return self._has(node, Atspi.StateType.ENABLED)

    def wait_until_enabled(self, program, name):
        wait_for(lambda: self.is_enabled(self.find(program, name, Role.PUSH_BUTTON)), LIMIT, f"'{name}' to be enabled")

    def is_focused(self, node):
        return self._has(node, Atspi.StateType.FOCUSED)

    # --- acting -----------------------------------------------------------------------------------

    @staticmethod
    def _xdotool(*arguments):
        subprocess.run(["xdotool", *map(str, arguments)], check=True, stdout=subprocess.DEVNULL)

    @staticmethod
    def point_of(node, place=MIDDLE):
        """A point of a widget on the screen; `place` is in fractions of the widget's width and height."""
        box = node.get_extents(Atspi.CoordType.SCREEN)
        return box.x + int(box.width * place[0]), box.y + int(box.height * place[1])

    def raise_window(self, title):
        """Brings a window to the front, for the clicks that follow."""
        self._tell_window(title, "windowactivate", "--sync")

    def move_window(self, title, left, top):
        self._tell_window(title, "windowmove", left, top)

    @staticmethod
    def _tell_window(title, *command):
        """Tries again, since a program reports a window as shown before it is on the screen, where xdotool finds it."""
        search = ["xdotool", "search", "--onlyvisible", "--name", name_pattern(title), *map(str, command)]
        wait_for(lambda: subprocess.run(search, check=False, stdout=subprocess.DEVNULL).returncode == 0, LIMIT,
                 f"the window '{title}' to be shown")

    def click(self, node, place=MIDDLE):
        wait_for(lambda: self.is_enabled(node), LIMIT, f"'{node.get_name()}' to be enabled")
        self.aim(node, place)
        self.click_here()

    def untick(self, box):
        self.click(box)
        wait_for(lambda: not self._has(box, Atspi.StateType.CHECKED), LIMIT, f"'{box.get_name()}' to lose its tick")

    def click_here(self):
        """Clicks where the pointer is."""
        self._xdotool("click", 1)

    def aim(self, node, place=MIDDLE):
        """Moves the pointer to a widget, and waits until its window is below it. A program reports a window as shown
        before the window manager has placed it; until then a click would go to another window."""
        window = self._window_of(node)

        def look():
            self._xdotool("mousemove", *self.point_of(node, place))
            inside = window.get_extents(Atspi.CoordType.SCREEN)
            left, top, width, height = self._under_pointer()
            margins = (inside.x - left, inside.y - top, left + width - inside.x - inside.width,
                       top + height - inside.y - inside.height)
            return all(0 <= margin <= LARGEST_FRAME for margin in margins)
        wait_for(look, LIMIT, f"'{node.get_name()}' to lie open")

    @staticmethod
    def _window_of(node):
        while node.get_parent().get_role() != Atspi.Role.APPLICATION:
            node = node.get_parent()
        return node

    def _under_pointer(self):
        """Place and size of the window that a click would go to, with its frame."""
        window = re.search(r"WINDOW=(\d+)", self._ask_xdotool("getmouselocation", "--shell"))[1]
        shown = self._ask_xdotool("getwindowgeometry", "--shell", window)
        values = dict(re.findall(r"^(X|Y|WIDTH|HEIGHT)=(-?\d+)$", shown, re.M))
        return tuple(int(values.get(name, 0)) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    @staticmethod
    def _ask_xdotool(*arguments):
        """The output of xdotool; empty if a window has closed meanwhile."""
        return subprocess.run(["xdotool", *arguments], check=False, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True).stdout

    def press(self, *keys):
        self._xdotool("key", *keys)

    # --- the message boxes ------------------------------------------------------------------------

    def box(self, program, besides, seconds=LIMIT):
        """The box that is open: a window whose title is none of `besides`."""
        return self._wait_to_see(
            lambda: next((top for top in self.windows(program) if top.get_name() not in besides), None),
            seconds, f"a box of {program}")

    def close_box(self, program, box, button=None):
        """Presses a button of a box: the one with this name, or the only one, whatever it is called."""
        title = box.get_name()
        self.click(self.button(box, button))
        wait_for(lambda: not self.has_window(program, title), LIMIT, f"the box '{title}' to close")

    def button(self, box, name=None):
        def look():
            named = [button for button in self.buttons(box) if name in (None, button.get_name())]
            return named[0] if len(named) == 1 else None
        return self._wait_to_see(look, LIMIT, f"the button '{name}'" if name else "a single button")

    # --- reading ----------------------------------------------------------------------------------

    @staticmethod
    def value(node):
        """The text of a text box."""
        node.clear_cache()
        return Atspi.Text.get_text(node, 0, -1)

    @staticmethod
    def place(node):
        """Left, top, width and height on the screen."""
        box = node.get_extents(Atspi.CoordType.SCREEN)
        return box.x, box.y, box.width, box.height

    @staticmethod
    def colour(x, y):
        """The colour of the screen at a point."""
        return subprocess.run(["import", "-silent", "-window", "root", "-crop", f"1x1+{x}+{y}", "-depth", "8", "rgb:-"],
                              check=True, stdout=subprocess.PIPE).stdout

    def picture(self, path, window=None):
        """Saves the whole screen, or what it shows of one window."""
        command = ["import", "-silent", "-window", "root"]
        if window is not None:
            box = window.get_extents(Atspi.CoordType.SCREEN)
            # Adds the frame that the window manager draws around the window.
            command += ["-crop", f"{box.width + 2}x{box.height + 26}+{max(box.x - 1, 0)}+{max(box.y - 24, 0)}",
                        "+repage"]
        subprocess.run([*command, str(path)], check=True)
