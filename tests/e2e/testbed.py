"""What tests of whole programs share: a sandbox for each module, programs started in it, the dialog worked, the
companion host with its log; and no test leaves a program.

HORALINK_BUILD names the build folder. In a long run, HORALINK_SHARE is the share of this process in all cases, as
"1/2", and HORALINK_ONLY the one case that is wanted.
"""
import contextlib
import itertools
import os
import signal
import subprocess
import sys
import unittest
from pathlib import Path

import dbus.bus

import host
from driver import LIMIT, Driver, Role
from host import ADD_IN_CLASS, BUS, EXCHANGE
from sandbox import CLASS_NAMES, Sandbox, wait_for

ADD_IN, SWITCHDESK = "horalink", "switchdesk"
LOOKUP, UPDATE = "Read the clock of the PBX", "Set the clock of the PBX"
CLOCK_READ, LOGIN_FAILED, NOTICE = "PBX Clock", "Login Failed", "System Fatal Notice"  # titles of boxes
WAIT_BOX, GIVE_UP = "Horalink – Waiting for an Answer", "Give up"  # and the button that ends a wait

BUILD = Path(os.environ["HORALINK_BUILD"])
OWN_TIME = BUILD / "tests/e2e/libown_time.so"
STARTS_ADD_INS = {"test_hosts", "test_lives"}  # by themselves, and see their ends
SHARE, ONLY = os.environ.get("HORALINK_SHARE", ""), os.environ.get("HORALINK_ONLY")

# Those of the module of tests; the accessibility library can be connected only once in a process.
sandbox = driver = bus = None


def set_up():
    """Serves a module as its setUpModule."""
    global sandbox, driver, bus
    folder = BUILD / "tests/e2e" / f"{sys.argv[-1]}{SHARE.replace('/', '-of-')}"
    sandbox = Sandbox(BUILD, folder, own_display=True).lay_out()
    if STARTS_ADD_INS & set(sys.argv[-1].split(".")):
        (folder / f"services/{ADD_IN_CLASS}.service").unlink()
    unittest.enterModuleContext(sandbox)
    driver, bus = Driver(sandbox), dbus.bus.BusConnection(sandbox.environment["DBUS_SESSION_BUS_ADDRESS"])
    unittest.addModuleCleanup(bus.close)


def chosen(sample, every):
    """The cases to go through, of which each is a row of words."""
    if ONLY:
        names = ["/".join(map(str, case)) for case in every]
        if ONLY not in names:
            sys.exit(f"no case '{ONLY}'; there are: {', '.join(names)}")
        return [every[names.index(ONLY)]]
    first, _, step = SHARE.partition("/")
    return list(every)[int(first) - 1::int(step)] if SHARE else sample


def dialog_title(exchange=EXCHANGE):
    return f"PBX Clock ({exchange})"


def running():
    """The installation's programs, as names by process number."""
    found = {}
    for entry in Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            # The path that it was started by; the installation may have but a link there.
            program = (entry / "cmdline").read_bytes().partition(b"\0")[0].decode(errors="replace")
            if program.startswith(f"{sandbox.root}/") and ") Z " not in (entry / "stat").read_text():
                found[int(entry.name)] = Path(program).name
    return found


def is_deserted():
    """Also in the eyes of the bus: what is asked of a name that still seems to be there gets lost."""
    return not running() and not any(bus.name_has_owner(name) for name in CLASS_NAMES)


def pids(program):
    return [pid for pid, name in running().items() if name == program]


def database_file(name):
    return sandbox.own_register() if name == "Register.mdb" else next(sandbox.root.glob(f"*/DATABASE/*/{name}"))


def changed(**changes):
    """The environment of the programs with changes, of which None takes a variable away."""
    return {name: value for name, value in {**sandbox.environment, **changes}.items() if value is not None}


def hasty(haste):
    return {"LD_PRELOAD": str(OWN_TIME), "HASTE": str(haste)}


def run(command, environment=None):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=LIMIT, check=False,
                          env=environment or sandbox.environment)


class EndToEndTest(unittest.TestCase):
    """Each test, and each `case` of one, finds the programs freshly installed and nothing running."""

    maxDiff = None
    wait_for = staticmethod(lambda condition, what, seconds=LIMIT: wait_for(condition, seconds, what))

    def setUp(self):
        sandbox.install()
        self.started, self.clients = [], []
        self.addCleanup(self.leave_nothing_behind)

    @contextlib.contextmanager
    def case(self, name):
        """One row of a table: a sub-test with all that a test has."""
        with self.subTest(name):
            sandbox.install()
            try:
                yield
            finally:
                self.leave_nothing_behind()

    def start(self, command, **options):
        self.started.append(sandbox.start(command, **options))
        return self.started[-1]

    def leave_nothing_behind(self):
        """Ends what the test started; what that leaves without a client has to end by itself."""
        for client in self.clients:
            client.leave()
        for process in reversed(self.started):
            sandbox.end(process)
            sandbox.processes.remove(process)
        self.started.clear()
        self.clients.clear()
        try:
            self.wait_for(is_deserted, "all programs to end")
        except TimeoutError:
            self.addCleanup(self.fail, f"left running: {running()}")
            for pid in running():
                os.kill(pid, signal.SIGKILL)

    def wait_until_gone(self, program=ADD_IN):
        self.wait_for(lambda: not pids(program), f"{program} to end")

    def press(self, button, program=ADD_IN):
        driver.click(driver.find(program, button, Role.PUSH_BUTTON))

    def leave(self, window):
        driver.raise_window(window)
        driver.press("alt+F4")

    def boxes(self):
        return [title for title in driver.titles(ADD_IN) if not title.startswith("PBX Clock (")]

    def close_box(self, title, button=None):
        """Presses a button of the one box that is open, or its only one; returns the box's text."""
        self.wait_for(self.boxes, f"the box '{title}'")
        self.assertEqual(self.boxes(), [title])
        box = driver.window(ADD_IN, title)
        text = "\n".join(text for text in driver.texts(box) if text.strip())
        driver.close_box(ADD_IN, box, button)
        return text

    def look_up(self):
        """A whole lookup; returns what the box says of the clock. The dialog refuses keys until the add-in has logged
        out, which it does after the box."""
        self.press(LOOKUP)
        text = self.close_box(CLOCK_READ)
        self.assertRegex(text, r"\d{4}/\d\d/\d\d \(\w{3}\)\n\d\d:\d\d:\d\d")
        driver.wait_until_enabled(ADD_IN, LOOKUP)
        return text


class OwnHostTest(EndToEndTest):
    """With hosts of the test's own, and the end of the add-in's process to be seen."""

    def join(self, address=None):
        self.clients.append(host.Host(address or sandbox.environment["DBUS_SESSION_BUS_ADDRESS"]))
        return self.clients[-1]

    def start_add_in(self, address=None, **changes):
        address = address or sandbox.environment["DBUS_SESSION_BUS_ADDRESS"]
        client = self.join(address)
        environment = changed(DBUS_SESSION_BUS_ADDRESS=address, **changes)
        add_in = self.start([sandbox.add_in, "-Embedding"], environment=environment)
        self.wait_for(lambda: client.ask(BUS, "/", BUS, "NameHasOwner", ADD_IN_CLASS), "the add-in to serve its class")
        return add_in, client

    def assert_good_end(self, add_in, client, *last):
        """The process ends with its last objects, and keeps none of the client's."""
        for each in last:
            client.send(each, "Object", "Release")
        self.assertEqual(add_in.wait(LIMIT), 0)
        self.wait_for(lambda: not +client.kept, "the last releases, which arrive after the end")


class Host:
    """The companion host, with the add-in open and every call that it sees in a log."""

    number = itertools.count(1)

    def __init__(self, test, *options, exchange=EXCHANGE, environment=None):
        self.log = sandbox.folder / f"host-{next(Host.number)}.log"
        self.test, self.exchange, self.window = test, exchange, f"Switchdesk \u2013 {exchange}"
        test.start([sandbox.host, "--log", self.log, "--open", exchange, *options], environment=environment)

    def open(self):
        self.wait_for_line("# Visible is written")
        driver.window(ADD_IN, dialog_title(self.exchange))
        return self

    def lines(self, start):
        lines = self.log.read_text(encoding="utf-8").splitlines() if self.log.exists() else []
        return [line for line in lines if line.startswith(start)]

    def wait_for_line(self, start):
        self.test.wait_for(lambda: self.lines(start), f"'{start}' in {self.log.name}")
