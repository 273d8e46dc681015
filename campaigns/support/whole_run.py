"""One whole life of the add-in: start, opening by a host, lookups, background, end; and all that an operator and
the host see of it, which says whether two lives were alike.

The host is in this process, the add-in a child whose end is seen. Boxes are closed as they come up.
"""
import re
import subprocess
import time
from dataclasses import dataclass

import dbus
import dbus.bus
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import Atspi, GLib

import scripted_host
from stage import GIVE_UP
from toolkit import without_harmless

ADD_IN, EXCHANGE = "horalink", "Main Office"
LOOKUP, DIALOG, CLOCK_READ = "Read the clock of the PBX", "PBX Clock (", "PBX Clock"
NOTICE, WAIT_BOX = "System Fatal Notice", "Horalink \u2013 Waiting for an Answer"
# What the bus says for a process that isn't there any more.
GONE = [f"org.freedesktop.DBus.Error.{name}" for name in ("NoReply", "ServiceUnknown", "NameHasNoOwner")]
BUSY, TRY_AGAIN = "org.velmora.Automation1.Error.Busy", 0.2  # the answer to a call that may be sent again, and when
WAIT_LIMIT = 20  # seconds until the add-in asks the operator whether to go on waiting
LIMIT = 45  # seconds in which each step comes to its end on a busy machine, that wait included
IDLE_LIMIT = 60 + LIMIT  # for a process that nobody has used
QUIET = 4  # seconds without a call, after which no box comes any more
UNSHOWN = 2000  # milliseconds after which a request is answered whose key was never shown
SERVED = 0.02  # seconds between two looks at the screen

# What the dialog shows of the moment, and no two lives can have in common.
MOMENT = re.compile(r"\d|AM|PM|day|January|February|March|April|May|June|July|August|September|October|November|December")


@dataclass
class Seen:
    """What came of a life, as far as it can be seen from outside."""
    steps: list
    boxes: list
    names: list
    status: int
    errors: str
    ill: str  # a hang or a crash; empty for a life that ended well
    ended_early: bool

    def shown(self):
        return self.steps, self.boxes, self.names, self.status, self.errors

    def difference(self, other):
        for what, now, good in zip(("steps", "boxes", "names", "status", "errors"), self.shown(), other.shown()):
            if now != good:
                return f"{what} {now}, else {good}"
        return ""

    @property
    def has_notice(self):
        return any(title == NOTICE for title, _ in self.boxes)


class Hang(Exception):
    """A step that came to no end within the limit."""


class Ended(Exception):
    """The add-in went while something was still wanted of it."""


class Host(scripted_host.Host):
    """The scripted host, in this process: what it has to tell is kept. It answers a request as soon as it was shown
    the key of it, before which the add-in isn't ready for an answer."""

    def __init__(self, bus):
        self.events, self.due, self.last_event = [], None, time.monotonic()
        super().__init__(bus)
        self.answering = False

    def called(self, message):
        super().called(message)
        member = self.calls()[-1]
        if member == "SendRequest":
            self.due = GLib.timeout_add(UNSHOWN, self.call_back)
        elif member == "ShowMessage" and self.due:
            GLib.source_remove(self.due)
            self.call_back()

    def call_back(self, *arguments):
        self.due = None
        super().call_back(*arguments)

    def leave(self):
        if self.due:
            GLib.source_remove(self.due)
        self.bus.close()

    def tell(self, **event):
        self.events.append(event)
        self.last_event = time.monotonic()

    def answer_since(self, mark):
        return next((event for event in self.events[mark:] if "answered" in event), None)

    def calls(self):
        return [event["call"] for event in self.events if "call" in event]


class WholeRun:
    """Runs the add-in once. `before` is called ahead of each step, with its name; `prefix` are the words of a command
    that the add-in is started with."""

    def __init__(self, arrangement, driver, environment=None, lookups=2, before=None, prefix=()):
        self.arrangement, self.driver = arrangement, driver
        self.environment = {**arrangement.environment, **(environment or {})}
        self.lookups, self.prefix = lookups, prefix
        self.before = before or (lambda step: None)
        self.steps, self.boxes, self.names = [], [], []

    def run(self):
        bus = dbus.bus.BusConnection(self.environment["DBUS_SESSION_BUS_ADDRESS"], mainloop=DBusGMainLoop())
        self.host = Host(bus)
        self.process = self.arrangement.start([*self.prefix, self.arrangement.add_in, "-Embedding"], self.environment,
                                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        hang, ended_early = None, True
        try:
            self.live()
            ended_early = False
            self.wait_for(lambda: False, "the end of the process")
        except Ended:
            self.steps.append("ended")
        except Hang as reason:
            hang = f"hangs, waiting for {reason}"
        finally:
            if self.process.poll() is None:
                self.process.kill()
            errors = without_harmless(self.process.communicate()[1].decode(errors="replace"))
            self.arrangement.processes.remove(self.process)
            self.host.leave()
        return Seen(self.steps, self.boxes, self.names, self.process.returncode, errors, hang or self.illness(),
                    ended_early)

    def illness(self):
        status = self.process.returncode
        return f"signal {-status}" if status < 0 else f"status {status}" if status > 1 else ""

    def live(self):
        self.step("serve", lambda: self.bus_has(scripted_host.ADD_IN))
        # A host may try again: a creation that failed leaves nothing behind.
        if not (self.ask("create", self.host.do_create) or self.ask("create again", self.host.do_create)):
            raise Hang("a creation that succeeds")
        if self.opens():
            self.ask("background", lambda: self.host.invoke("background", "layer", "SetBackGround", 1, [dbus.Int16(1)]))
            for number in range(self.lookups):
                self.look_up(number)
            self.read_names()
        self.before("release")
        for name in ["dialog"] * self.host.logins + ["layer"]:
            self.host.send(f"release {name}", *self.host.references[name], scripted_host.OBJECT, "Release")

    def opens(self):
        """False where the host is told that the dialog can't be had; it gives its object back then."""
        registered = self.ask("register", lambda: self.host.do_register(EXCHANGE))
        return registered and not registered[0] and self.ask("show", self.host.do_show)

    # --- steps --------------------------------------------------------------------------------------------------

    def step(self, name, done):
        self.before(name)
        self.wait_for(done, name, IDLE_LIMIT)

    def ask(self, name, send):
        """Sends a call and notes how it was answered; gives the values, or None for an error."""
        self.before(name)
        answer = self.answer(name, send)
        while answer["error"] == BUSY:
            again = time.monotonic() + TRY_AGAIN
            self.wait_for(lambda: time.monotonic() > again, f"the moment to send '{name}' again")
            answer = self.answer(name, send)
        self.steps.append(f"{name}: {answer['error'] or answer['values']}")
        if answer["error"] in GONE:
            self.wait_for(lambda: False, "the end of a process that has left the bus", IDLE_LIMIT)
        return None if answer["error"] else answer["values"]

    def answer(self, name, send):
        asked = len(self.host.events)
        send()
        return self.wait_for(lambda: self.host.answer_since(asked), f"the answer to '{name}'")

    def look_up(self, number):
        """A press on the button, up to the box behind it; notes what the host was asked meanwhile."""
        self.before(f"lookup {number}")
        button = self.wait_for(self.lookup_button, "the button to be enabled")
        boxes, calls = len(self.boxes), len(self.host.calls())
        self.host.last_event = time.monotonic()
        Atspi.Action.do_action(button, 0)
        self.wait_for(lambda: len(self.boxes) > boxes or self.is_quiet(), f"the box behind lookup {number}")
        if self.boxes[boxes:] and self.boxes[-1][0] == WAIT_BOX:
            self.wait_for(lambda: self.is_logged_out() or self.is_quiet(), f"the end of lookup {number}")
        self.steps.append(f"lookup {number}: {' '.join(self.host.calls()[calls:])}")

    def is_logged_out(self):
        calls = self.host.calls()
        return calls.count("LogOut") == calls.count("Login")

    def is_quiet(self):
        """True where no box comes any more: nothing has been called for long, with a login open for very long."""
        limit = QUIET if self.is_logged_out() else WAIT_LIMIT + QUIET
        return not self.host.due and time.monotonic() - self.host.last_event > limit

    def lookup_button(self):
        try:
            for window in self.driver.windows(ADD_IN):
                for node in self.driver.nodes(window):
                    if node.get_name() == LOOKUP and self.driver.is_enabled(node):
                        return node
        except GLib.Error:
            pass
        return None

    def read_names(self):
        """The names of all that the dialog shows."""
        try:
            self.names = [name for window in self.driver.windows(ADD_IN) for node in self.driver.nodes(window)
                          if (name := node.get_name()) and not MOMENT.search(name)]
        except GLib.Error:
            self.names = []

    def bus_has(self, name):
        return self.host.bus.name_has_owner(name)

    # --- waiting ------------------------------------------------------------------------------------------------

    def wait_for(self, condition, what, limit=LIMIT):
        """Serves the host and closes boxes until the condition holds."""
        context, end = GLib.MainContext.default(), time.monotonic() + limit
        looked = 0.0
        while True:
            while context.iteration(False):
                pass
            if value := condition():
                return value
            if self.process.poll() is not None:
                raise Ended(what)
            if time.monotonic() > end:
                raise Hang(what)
            if time.monotonic() - looked > SERVED:
                self.close_boxes()
                looked = time.monotonic()
            GLib.timeout_add(5, lambda: False)
            context.iteration(True)

    def close_boxes(self):
        try:
            for window in self.driver.windows(ADD_IN):
                if not window.get_name().startswith(DIALOG):
                    self.close_box(window)
        except GLib.Error:
            pass  # it went while it was looked at

    def close_box(self, window):
        buttons = self.driver.buttons(window)
        if not buttons:
            return
        chosen = next((node for node in buttons if node.get_name() == GIVE_UP), buttons[0])
        text = " ".join(text for text in self.driver.texts(window) if text.strip())
        self.boxes.append((window.get_name(), text))
        Atspi.Action.do_action(chosen, 0)
        self.wait_until_closed(window)

    def wait_until_closed(self, window):
        end = time.monotonic() + LIMIT
        while time.monotonic() < end and self.process.poll() is None:
            window.clear_cache()
            try:
                if not window.get_state_set().contains(Atspi.StateType.SHOWING):
                    return
            except GLib.Error:
                return
            while GLib.MainContext.default().iteration(False):
                pass
            time.sleep(0.005)
