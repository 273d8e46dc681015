"""What all end-to-end tests stand on: a display and a bus for each module, and for each test an installation
of its own, real programs in it, and the certainty that none of them is left behind.

HORALINK_BUILD names the build folder.
"""
import contextlib
import os
import signal
import sqlite3
import subprocess
import sys
import unittest
from pathlib import Path

import dbus.bus

SOURCES = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCES / "scripts"))
from arrangement import Arrangement, wait_for  # noqa: E402
from driver import LIMIT, Driver  # noqa: E402

BUILD = Path(os.environ["HORALINK_BUILD"])
EXCHANGE = "Main Office"
ADD_IN, SWITCHDESK = "horalink", "switchdesk"
LOOKUP, UPDATE, CLOSE = "Read the clock of the PBX", "Set the clock of the PBX", "Close this window"
CLOCK_READ = "PBX Clock"
LOGIN_FAILED = "Login Failed"
WAIT_BOX = "Horalink – Waiting for an Answer"
NOTICE = "System Fatal Notice"

ADD_IN_CLASS, EXCHANGE_CLASS = "Horalink10013.cOLELayer", "SwitchDeskProj10001.cPBXOle"

# The accessibility library can be connected once in a process, so there is one stage in each.
arrangement = None
driver = None
bus = None


def open_stage():
    """Serves a module as its setUpModule."""
    global arrangement, driver, bus
    folder = BUILD / "tests/e2e" / Path(sys.argv[0]).stem
    arrangement = Arrangement(BUILD, folder, own_display=True).lay_out()
    arrangement.__enter__()
    unittest.addModuleCleanup(arrangement.__exit__)
    driver = Driver(arrangement)
    bus = connect()
    unittest.addModuleCleanup(bus.close)


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


def database_file(name):
    return next(arrangement.root.glob(f"*/DATABASE/{name}"))


def change_database(name, *statements):
    """Changes a database of the installation, before the add-in is started."""
    database = sqlite3.connect(database_file(name))
    with database:
        for statement in statements:
            database.execute(statement)
    database.close()


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
        driver.click(driver.find(ADD_IN, button, "push button"))

    def is_enabled(self, button=LOOKUP):
        return driver.is_enabled(driver.find(ADD_IN, button, "push button"))

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

    def close_box(self, title, button="OK", seconds=LIMIT):
        """Presses a button of the box that comes up; returns the box's text."""
        text = self.box_text(title, seconds)
        driver.close_box(ADD_IN, driver.window(ADD_IN, title), button)
        return text

    def look_up(self):
        """A whole lookup; returns what the box says of the clock."""
        self.press(LOOKUP)
        return self.close_box(CLOCK_READ)

    def assert_usable(self):
        """The dialog is there, takes clicks, and a lookup succeeds."""
        self.assertEqual(self.boxes(), [])
        self.wait_until_enabled()
        self.assertRegex(self.look_up(), r"\d{4}/\d\d/\d\d \(\w{3}\)\n\d\d:\d\d:\d\d")


class Host:
    """The companion host, with the add-in open and every call that it sees in a log."""

    number = 0
    MEMBERS = ("oPBX", "Login", "SendRequest", "LogOut", "ShowMessage", "ShowResults", "ShowCode")

    def __init__(self, test, *options, exchange=EXCHANGE, environment=None):
        Host.number += 1
        self.log = arrangement.folder / f"host-{Host.number}.log"
        opening = ["--open", exchange] if exchange else []
        self.process = test.start([arrangement.host, "--log", self.log, *opening, *options], environment=environment)
        self.test, self.exchange = test, exchange
        self.mark = 0

    def open(self):
        """Waits until the dialog is up and everything about it is logged; `calls` counts from here."""
        self.wait_for_line("# Visible is written")
        self.test.dialog(self.exchange)
        self.skip()
        return self

    def all_lines(self):
        try:
            return self.log.read_text(encoding="utf-8").splitlines()
        except FileNotFoundError:
            return []

    def lines(self):
        return self.all_lines()[self.mark:]

    def skip(self):
        self.mark = len(self.all_lines())

    def wait_for_line(self, start, count=1):
        """Waits for a line with this start, the `count`th of them."""
        self.test.wait_for(lambda: sum(line.startswith(start) for line in self.lines()) >= count,
                           f"'{start}' in {self.log.name}")

    def exchange_lines(self):
        """The calls of the host object and the exchange object, without what was read of an answer."""
        return [line for line in self.lines() if line.split("(")[0].split(" ")[0] in self.MEMBERS]

    def calls(self):
        return [line.split("(")[0].split(" ")[0] for line in self.exchange_lines()]

    def told(self):
        """The texts and codes that came by ShowMessage and ShowCode."""
        return [line.partition("(")[2].rpartition(") -> ")[0] for line in self.exchange_lines()
                if line.startswith(("ShowMessage(", "ShowCode("))]

    def kill(self):
        self.process.kill()
        self.process.wait()


def run(command, **options):
    """Runs a program to its end and catches what it prints."""
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=LIMIT,
                          check=False, env=options.pop("environment", arrangement.environment), **options)
