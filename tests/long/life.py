"""One whole life of the add-in, and all that an operator and a host see of it, by which two lives are compared.

Controls are found by role and place: texts may be damaged here.
"""
import time

from end_to_end import BUILD, changed

import stage
from arrangement import wait_for
from driver import Atspi, GLib, Role
from host import BUSY, CALL, LIMIT, WRITE, Host, result
from stage import ADD_IN, NOTICE

UPDATE, LOOKUP = 1, 2  # places of the buttons in the dialog
IDLE_LIMIT = 100  # seconds; a process that nobody has used ends after a minute
# What the bus says for a process that has left it.
GONE = [f"org.freedesktop.DBus.Error.{name}" for name in ("NoReply", "ServiceUnknown", "NameHasNoOwner")]
QUIET, WAIT_LIMIT = 4, 20  # seconds without a call after which no box comes: where nothing waits, and where something does
HARMLESS = ("setNetWmStateOnUnmappedWindow", "Qt AtSpiAdaptor: Accessible invalid")  # what the toolkit says of its own


def failing(plan, trace=""):
    """The environment in which calls fail, as FailingCalls.cpp describes it."""
    return {"LD_PRELOAD": str(BUILD / "tests/long/failing-calls.so"), "FAILING_CALLS": plan,
            "FAILING_CALLS_TRACE": str(trace)}


class Ended(Exception):
    """The add-in has ended while something was wanted of it."""


class Life:
    """`before` is called ahead of each step with its name; `prefix` starts the add-in, in a changed environment."""

    def __init__(self, prefix=(), before=lambda step: None, presses=(LOOKUP,), patience=1, **environment):
        self.before, self.presses, self.patience = before, presses, patience
        self.steps, self.boxes, self.names, self.ill, self.ended_early = [], [], [], "", True
        self.before("start")
        self.host = Host(stage.arrangement.environment["DBUS_SESSION_BUS_ADDRESS"])
        with open(stage.arrangement.folder / "errors", "w+", encoding="utf-8", errors="replace") as errors:
            self.process = stage.arrangement.start([*prefix, stage.arrangement.add_in, "-Embedding"],
                                                   changed(**environment), stderr=errors)
            try:
                self.live()
            except Ended:
                pass
            except TimeoutError as error:
                self.ill = f"hangs: {error}"
            finally:
                self.process.kill()
                self.status = self.process.wait()
                stage.arrangement.processes.remove(self.process)
                self.host.leave()
            errors.seek(0)
            self.has_notice = any(title == NOTICE for title, _ in self.boxes)
            self.errors = "".join(line for line in errors if not any(each in line for each in HARMLESS))
        if self.status not in (0, 1) and not self.ill:
            self.ill = f"ended with {self.status}"

    def differs_from(self, other):
        return next((f"{name}: {now}, not {good}" for name in ("steps", "boxes", "names", "status", "errors")
                     if (now := getattr(self, name)) != (good := getattr(other, name))), "")

    # --- steps ------------------------------------------------------------------------------------

    def live(self):
        self.wait(lambda: stage.bus.name_has_owner(stage.ADD_IN_CLASS), "the add-in to serve", IDLE_LIMIT)
        # A host may try again: a creation that failed leaves nothing.
        layer = self.ask("create", self.host.create) or self.ask("create again", self.host.create)
        if not layer:
            raise TimeoutError("no creation succeeds")
        if self.invoke("register", layer, "RegisterPBX", CALL, stage.EXCHANGE, self.host.at("/Host"), 7) is False \
                and self.invoke("show", layer, "Visible", WRITE, True) is not None:
            self.invoke("background", layer, "SetBackGround", CALL, 1)
            for number, place in enumerate(self.presses):
                self.press(f"press {number}", place)
            self.names = [node.get_name() for node in self.nodes(Role.PUSH_BUTTON, Role.CHECK_BOX, Role.TEXT)]
        self.before("release")
        for kept in (*self.host.clients.values(), layer):
            self.host.send(kept, "Object", "Release")
        self.ended_early = False
        self.wait(lambda: False, "the end")

    def invoke(self, step, *call):
        return self.ask(step, lambda: self.host.invoke(*call))

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
        """Up to the box of the request, or to where none comes any more. A disabled dialog looks like any other."""
        self.before(step)
        button = self.wait(lambda: next(filter(stage.driver.is_enabled, self.nodes(Role.PUSH_BUTTON)[place:place + 1]), None),
                           "the button to be enabled")
        boxes, calls, began = len(self.boxes), len(self.host.calls), time.monotonic()
        Atspi.Action.do_action(button, 0)

        def is_logged_out():
            called = [call.split()[0] for _, call in self.host.calls]
            return called.count("Login") == called.count("LogOut")

        def is_quiet():
            limit = QUIET if is_logged_out() else WAIT_LIMIT + QUIET
            return time.monotonic() - max(began, self.host.last_call) > limit * self.patience
        self.wait(lambda: len(self.boxes) > boxes and is_logged_out() or is_quiet(), f"the end of '{step}'")
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
                for box, *_ in self.windows(are_dialogs=False):
                    self.close(box)
            except GLib.Error:
                pass  # it went while it was looked at
            time.sleep(0.01)
        return value

    @staticmethod
    def windows(are_dialogs):
        """Each as its widgets, the window the first. The dialog has the arrows, the boxes have none."""
        windows = [list(stage.driver.nodes(window)) for window in stage.driver.windows(ADD_IN)]
        return [nodes for nodes in windows if are_dialogs == any(node.get_role() == Role.SPIN_BUTTON for node in nodes)]

    def nodes(self, *roles):
        """Of the dialog, where it is there."""
        try:
            return [node for nodes in self.windows(are_dialogs=True) for node in nodes if node.get_role() in roles]
        except GLib.Error:
            return []

    def close(self, box):
        """By its last button, which gives up where that is offered."""
        buttons = stage.driver.buttons(box)
        if buttons:
            self.boxes.append((box.get_name(), " ".join(stage.driver.texts(box))))
            Atspi.Action.do_action(buttons[-1], 0)
            wait_for(lambda: box.clear_cache() or not stage.driver.is_showing(box) or self.process.poll() is not None, LIMIT,
                     f"the box '{box.get_name()}' to close")
