"""One whole life of the add-in, and all that an operator and a host see of it, by which two lives are compared.

Controls are found by role and place: texts may be damaged here.
"""
import re
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "e2e"))
import end_to_end  # noqa: E402, F401
import stage  # noqa: E402
from driver import Atspi, GLib, Role  # noqa: E402
from host import BUSY, CALL, LIMIT, Host, result  # noqa: E402
from stage import ADD_IN, NOTICE  # noqa: E402

UPDATE, LOOKUP = 1, 2  # places of the buttons in the dialog
IDLE_LIMIT = 100  # seconds; a process that nobody has used ends after a minute
# What the bus says for a process that has left it.
GONE = [f"org.freedesktop.DBus.Error.{name}" for name in ("NoReply", "ServiceUnknown", "NameHasNoOwner")]
QUIET, WAIT_LIMIT = 4, 20  # seconds without a call after which no box comes: where nothing waits, and where something does
# What two lives can't have in common: the moment, and names of the bus.
MOMENT = re.compile(r"\d|AM|PM|day|January|February|March|April|May|June|July|August|September|October|November|December")
HARMLESS = ("setNetWmStateOnUnmappedWindow", "Qt AtSpiAdaptor: Accessible invalid")  # what the toolkit says of its own


class Ended(Exception):
    """The add-in has ended while something was wanted of it."""


class Life:
    """`before` is called ahead of each step with its name; `prefix` starts the add-in."""

    def __init__(self, environment=None, prefix=(), before=lambda step: None, presses=(LOOKUP,), patience=1):
        self.environment = {**stage.arrangement.environment, **(environment or {})}
        self.prefix, self.before, self.presses, self.patience = prefix, before, presses, patience
        self.steps, self.boxes, self.names, self.ill, self.ended_early = [], [], [], "", False

    def run(self):
        self.host = Host(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        with open(stage.arrangement.folder / "errors", "w+", encoding="utf-8", errors="replace") as errors:
            self.process = stage.arrangement.start([*self.prefix, stage.arrangement.add_in, "-Embedding"],
                                                   self.environment, stderr=errors)
            try:
                self.live()
            except Ended:
                self.ended_early = True
            except TimeoutError as error:
                self.ill = f"hangs: {error}"
            finally:
                self.process.kill()
                self.status = self.process.wait()
                stage.arrangement.processes.remove(self.process)
                self.host.leave()
            errors.seek(0)
            self.errors = "".join(line for line in errors if not any(each in line for each in HARMLESS))
        if self.status not in (0, 1) and not self.ill:
            self.ill = f"ended with {self.status}"
        return self

    def seen(self):
        return self.steps, self.boxes, self.names, self.status, self.errors

    def differs_from(self, other):
        return next((f"{now}, not {good}" for now, good in zip(self.seen(), other.seen()) if now != good), "")

    @property
    def has_notice(self):
        return any(title == NOTICE for title, _ in self.boxes)

    # --- steps ------------------------------------------------------------------------------------

    def live(self):
        self.before("serve")
        self.wait(lambda: stage.bus.name_has_owner(stage.ADD_IN_CLASS), "the add-in to serve", IDLE_LIMIT)
        # A host may try again: a creation that failed leaves nothing.
        layer = self.ask("create", self.host.create) or self.ask("create again", self.host.create)
        if not layer:
            raise TimeoutError("no creation succeeds")
        if self.ask("register", lambda: self.invoke(layer, "RegisterPBX", stage.EXCHANGE, self.host.at("/Host"), 7)) is False \
                and self.ask("show", lambda: self.invoke(layer, "Visible", True, kind=4)) is not None:
            self.ask("background", lambda: self.invoke(layer, "SetBackGround", 1))
            for number, place in enumerate(self.presses):
                self.press(f"press {number}", place)
            self.names = [name for name in map(Atspi.Accessible.get_name, self.nodes()) if not MOMENT.search(name)]
        self.before("release")
        for kept in (*self.host.clients.values(), layer):
            self.host.send(kept, "Object", "Release")
        try:
            self.wait(lambda: False, "the end", LIMIT * self.patience)
        except Ended:
            pass

    def invoke(self, layer, member, *arguments, kind=CALL):
        return self.host.invoke(layer, member, kind, *arguments)

    def ask(self, step, send):
        """Sends a call, again where it is refused as busy; gives what came, or None for an error."""
        self.before(step)
        answer = (BUSY,)
        while isinstance(answer, tuple) and answer[0] == BUSY:
            future = send()
            self.wait(future.done, f"the answer to '{step}'")
            answer = result(future)
        failed = isinstance(answer, tuple) and str(answer[0]).startswith("org.")
        if failed and answer[0] in GONE:
            self.wait(lambda: False, "the end of a process that has left the bus", IDLE_LIMIT)
        self.steps.append(f"{step}: {answer if failed or isinstance(answer, bool) else 'done'}")
        return None if failed else answer

    def press(self, step, place):
        """Up to the box of the request, or to where none comes any more. A disabled dialog is not told from another one."""
        self.before(step)
        button = self.wait(lambda: self.enabled_button(place), "the button to be enabled")
        boxes, calls, began = len(self.boxes), len(self.host.calls), time.monotonic()
        Atspi.Action.do_action(button, 0)

        def is_logged_out():
            called = [call.split()[0] for _, call in self.host.calls]
            return called.count("Login") == called.count("LogOut")

        def is_quiet():
            limit = QUIET if is_logged_out() else WAIT_LIMIT + QUIET
            return time.monotonic() - max(began, self.host.last_call) > limit * self.patience
        self.wait(lambda: len(self.boxes) > boxes or is_quiet(), f"the end of '{step}'")
        self.wait(lambda: is_logged_out() or is_quiet(), f"the log-out of '{step}'")
        self.steps.append(f"{step}: {' '.join(call.split()[0] for _, call in self.host.calls[calls:])}")

    # --- the screen -------------------------------------------------------------------------------

    def wait(self, condition, what, seconds=LIMIT):
        """Closes boxes until the condition holds."""
        end = time.monotonic() + seconds * self.patience
        while not (value := condition()):
            if self.process.poll() is not None:
                raise Ended(what)
            if time.monotonic() > end:
                raise TimeoutError(f"{what}, after {self.steps}, with {stage.driver.titles(ADD_IN)}")
            try:
                for window in self.windows(are_dialogs=False):
                    self.close(window)
            except GLib.Error:
                pass  # it went while it was looked at
            time.sleep(0.01)
        return value

    @staticmethod
    def windows(are_dialogs):
        """The dialog has the arrows, the boxes have none."""
        return [window for window in stage.driver.windows(ADD_IN)
                if are_dialogs == any(node.get_role() == Role.SPIN_BUTTON for node in stage.driver.nodes(window))]

    def nodes(self):
        try:
            return [node for window in self.windows(are_dialogs=True) for node in stage.driver.nodes(window)]
        except GLib.Error:
            return []

    def enabled_button(self, place):
        buttons = [node for node in self.nodes() if node.get_role() == Role.PUSH_BUTTON]
        return next((node for node in buttons[place:place + 1] if stage.driver.is_enabled(node)), None)

    def close(self, box):
        """By its last button, which gives up where that is offered."""
        buttons = stage.driver.buttons(box)
        if buttons:
            self.boxes.append((box.get_name(), " ".join(stage.driver.texts(box))))
            Atspi.Action.do_action(buttons[-1], 0)
            end = time.monotonic() + LIMIT
            while stage.driver.is_showing(box) and time.monotonic() < end and self.process.poll() is None:
                box.clear_cache()
                time.sleep(0.005)
