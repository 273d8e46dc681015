"""Where whole programs are played with: display, bus and installation of this process, and the tools of a test that
starts programs there, works the dialog, and is certain that none of them is left.
"""
import contextlib
import os
import signal
import unittest
from pathlib import Path

import dbus.bus

from arrangement import wait_for
from driver import LIMIT, Role

EXCHANGE = "Main Office"
ADD_IN, SWITCHDESK = "horalink", "switchdesk"
LOOKUP, UPDATE, CLOSE = "Read the clock of the PBX", "Set the clock of the PBX", "Close this window"
CLOCK_READ = "PBX Clock"
LOGIN_FAILED = "Login Failed"
WAIT_BOX = "Horalink – Waiting for an Answer"
GIVE_UP = "Give up"  # the button that ends a wait
NOTICE = "System Fatal Notice"

ADD_IN_CLASS, EXCHANGE_CLASS = "Horalink10013.cOLELayer", "SwitchDeskProj10001.cPBXOle"
# What a good exchange calls of the host, in this order.
GOOD = ["oPBX", "Login", "ShowMessage", "oPBX", "SendRequest", "ShowMessage",
        "ShowResults", "ShowMessage", "ShowCode", "oPBX", "LogOut"]

# The accessibility library can be connected once in a process, so there is one stage in each.
arrangement = None
driver = None
bus = None


def take(installation, its_driver):
    """Makes an installation the one that is played on."""
    global arrangement, driver, bus
    arrangement, driver = installation, its_driver
    bus = connect()


def dialog_title(exchange=EXCHANGE):
    return f"PBX Clock ({exchange})"


def running():
    """The installation's programs that run, as names by process number."""
    found = {}
    for entry in Path("/proc").iterdir():
        if not entry.name.isdigit():
            continue
        try:
            # The path that it was started by; the installation may have but a link there.
            program = (entry / "cmdline").read_bytes().partition(b"\0")[0].decode(errors="replace")
            alive = (entry / "stat").read_text().rpartition(")")[2].split()[0] != "Z"
        except OSError:
            continue
        if alive and program.startswith(f"{arrangement.root}/"):
            found[int(entry.name)] = Path(program).name
    return found


def is_deserted():
    """No program runs, and the bus knows it: what is asked of a name that still seems to be there gets lost."""
    return not running() and not any(bus.name_has_owner(name) for name in (ADD_IN_CLASS, EXCHANGE_CLASS))


def pids(program):
    return [pid for pid, name in running().items() if name == program]


def connect(main_loop=None):
    """A client of the bus that shares no connection with any other."""
    return dbus.bus.BusConnection(arrangement.environment["DBUS_SESSION_BUS_ADDRESS"], mainloop=main_loop)


class EndToEndTest(unittest.TestCase):
    """Each test, and each `case` of one, finds the programs freshly installed and nothing running."""

    maxDiff = None

    def setUp(self):
        self.begin()
        self.addCleanup(self.leave_nothing_behind)

    def begin(self):
        arrangement.install()
        self.started = []
        self.clients = []

    @contextlib.contextmanager
    def case(self, name):
        """One row of a table: a sub-test with all that a test has."""
        with self.subTest(name):
            self.begin()
            try:
                yield
            finally:
                self.leave_nothing_behind()

    def start(self, command, **options):
        process = arrangement.start(command, **options)
        self.started.append(process)
        return process

    def leave_nothing_behind(self):
        """Ends what the test started; what that leaves without a client has to end by itself."""
        for client in self.clients:
            client.leave()
        for process in reversed(self.started):
            arrangement.end(process)
            if process in arrangement.processes:
                arrangement.processes.remove(process)
        self.started.clear()
        try:
            self.wait_for(is_deserted, "all programs to end")
        except TimeoutError:
            left = running()
            for pid in left:
                os.kill(pid, signal.SIGKILL)
            self.wait_for(lambda: not running(), "the killed programs to go")
            self.fail(f"left running: {left}")

    # --- waiting ----------------------------------------------------------------------------------

    @staticmethod
    def wait_for(condition, what, seconds=LIMIT):
        return wait_for(condition, seconds, what)

    def wait_until_gone(self, program=ADD_IN):
        self.wait_for(lambda: not pids(program), f"{program} to end")

    # --- the dialog -------------------------------------------------------------------------------

    def dialog(self, exchange=EXCHANGE):
        return driver.window(ADD_IN, dialog_title(exchange))

    def press(self, button):
        driver.click(driver.find(ADD_IN, button, Role.PUSH_BUTTON))

    def is_enabled(self, button=LOOKUP):
        return driver.is_enabled(driver.find(ADD_IN, button, Role.PUSH_BUTTON))

    def wait_until_enabled(self, button=LOOKUP):
        self.wait_for(lambda: self.is_enabled(button), f"'{button}' to be enabled")

    def boxes(self):
        return [title for title in driver.titles(ADD_IN) if not title.startswith("PBX Clock (")]

    def box_text(self, title, seconds=LIMIT):
        """The text of the one box that is open, which has to have this title."""
        self.wait_for(self.boxes, f"the box '{title}'", seconds)
        self.assertEqual(self.boxes(), [title])
        box = driver.window(ADD_IN, title)
        return "\n".join(text for text in driver.texts(box) if text.strip())

    def close_box(self, title, button=None, seconds=LIMIT):
        """Presses a button of the box that comes up, or its only one; returns the box's text."""
        text = self.box_text(title, seconds)
        driver.close_box(ADD_IN, driver.window(ADD_IN, title), button)
        return text

    def look_up(self):
        """A whole lookup; returns what the box says of the clock. The dialog refuses keys until the add-in has logged
        out, which it does after the box."""
        self.press(LOOKUP)
        text = self.close_box(CLOCK_READ)
        self.wait_until_enabled()
        return text

    def assert_usable(self):
        """The dialog is there, takes clicks, and a lookup succeeds."""
        self.assertEqual(self.boxes(), [])
        self.wait_until_enabled()
        self.assertRegex(self.look_up(), r"\d{4}/\d\d/\d\d \(\w{3}\)\n\d\d:\d\d:\d\d")
