"""Works a program as an operator does: finds its widgets by their accessible names, clicks them with real
input events, and reads what its boxes say."""
import os
import re
import subprocess
from datetime import datetime
from pathlib import Path

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402
from gi.repository import GLib  # noqa: E402

from arrangement import wait_for  # noqa: E402

LIMIT = 25  # seconds for what comes at once on an idle machine


class Driver:
    """Drives the programs of one arrangement. One for each process: the accessibility bus is connected once."""

    def __init__(self, arrangement):
        self.arrangement = arrangement
        for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"):
            os.environ[name] = arrangement.environment[name]
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

    def _walk(self, node):
        yield node
        for child in self._children(node):
            yield from self._walk(child)

    @staticmethod
    def _program_of(application):
        """Its name, without asking it: a program that stands still would not answer."""
        try:
            return Path(f"/proc/{application.get_process_id()}/comm").read_text(encoding="utf-8").strip()
        except OSError:
            return None

    def windows(self, program):
        """The windows of a program that are on the screen."""
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for index in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(index)
            try:
                if application is None or self._program_of(application) != program:
                    continue
                for window in self._children(application):
                    if window.get_state_set().contains(Atspi.StateType.SHOWING):
                        yield window
            except GLib.Error:
                continue  # it went away while it was looked at

    def find(self, program, name, role=None, seconds=LIMIT, window=None):
        """A widget by its accessible name, or the start of it, in any window or in that of a title."""
        def look():
            try:
                for top in self.windows(program):
                    if window is not None and top.get_name() != window:
                        continue
                    for node in self._walk(top):
                        if node.get_name().strip().startswith(name) and role in (None, node.get_role_name()):
                            return node
            except GLib.Error:
                return None
            return None
        return wait_for(look, seconds, f"'{name}' in {program}")

    def window(self, program, title=None, seconds=LIMIT):
        """A window by its title, or the first."""
        def look():
            try:
                return next((top for top in self.windows(program) if title in (None, top.get_name())), None)
            except GLib.Error:
                return None
        return wait_for(look, seconds, f"a window '{title}' of {program}")

    def titles(self, program):
        """The titles of a program's windows."""
        try:
            return [top.get_name() for top in self.windows(program)]
        except GLib.Error:
            return []

    def has_window(self, program, title):
        return title in self.titles(program)

    def texts(self, window):
        """All texts of a window that stand on labels."""
        return [node.get_name() for node in self._walk(window) if node.get_role_name() == "label"]

    @staticmethod
    def is_enabled(node):
        node.clear_cache()
        return node.get_state_set().contains(Atspi.StateType.ENABLED)

    # --- acting -----------------------------------------------------------------------------------

    @staticmethod
    def _xdotool(*arguments):
        subprocess.run(["xdotool", *map(str, arguments)], check=True, stdout=subprocess.DEVNULL)

    def point_of(self, node):
        """The middle of a widget on the screen."""
        box = node.get_extents(Atspi.CoordType.SCREEN)
        return box.x + box.width // 2, box.y + box.height // 2

    def raise_window(self, title):
        """Brings a window to the front, for the clicks that follow."""
        self._xdotool("search", "--onlyvisible", "--name", "^" + re.escape(title) + "$", "windowactivate", "--sync")

    def click(self, node):
        wait_for(lambda: self.is_enabled(node), LIMIT, f"'{node.get_name()}' to be enabled")
        self._xdotool("mousemove", *self.settled_point(node), "click", 1)

    def settled_point(self, node):
        """The middle of a widget whose window the window manager has done placing."""
        seen = []

        def look():
            seen.append(self.point_of(node))
            return seen[-1] if seen[-1:] == seen[-2:-1] else None
        return wait_for(look, LIMIT, f"'{node.get_name()}' to stand still")

    def click_twice(self, node):
        """Two clicks at once, as an impatient operator's."""
        self._xdotool("mousemove", *self.point_of(node), "click", "--repeat", 2, "--delay", 10, 1)

    def press(self, *keys):
        self._xdotool("key", *keys)

    # --- the message boxes ------------------------------------------------------------------------

    def box(self, program, besides, seconds=LIMIT):
        """The box that is open: a window whose title is none of `besides`."""
        def look():
            try:
                return next((top for top in self.windows(program) if top.get_name() not in besides), None)
            except GLib.Error:
                return None
        return wait_for(look, seconds, f"a box of {program}")

    def close_box(self, program, box, button="OK"):
        title, attempts = box.get_name(), 0
        while self.has_window(program, title):
            self.click(self.find(program, button, "push button", window=title))
            try:
                wait_for(lambda: not self.has_window(program, title), LIMIT / 5, f"the box '{title}' to close")
            except TimeoutError:
                # A window that came up under the pointer may have taken the click; but only so often.
                attempts += 1
                if attempts == 5:
                    raise

    # --- reading ----------------------------------------------------------------------------------

    @staticmethod
    def value(node):
        """The text of a box."""
        node.clear_cache()
        return Atspi.Text.get_text(node, 0, -1)

    def date(self, program):
        """The day that the calendar shows as chosen, year/month/day; nothing where none is."""
        def look():
            for top in self.windows(program):
                for node in self._walk(top):
                    try:
                        return datetime.strptime(node.get_name(), "%A, %d %B %Y").strftime("%Y/%m/%d")
                    except ValueError:
                        continue
            return None
        return look()

    def picture(self, path, window=None):
        """Saves the whole screen, or what it shows of one window."""
        command = ["import", "-silent", "-window", "root"]
        if window is not None:
            box = window.get_extents(Atspi.CoordType.SCREEN)
            # The frame that the window manager draws lies outside.
            command += ["-crop", f"{box.width + 2}x{box.height + 26}+{max(box.x - 1, 0)}+{max(box.y - 24, 0)}",
                        "+repage"]
        subprocess.run([*command, str(path)], check=True)
