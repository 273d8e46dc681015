"""The add-in with a scripted host: brought into any state of a request, and looked over when a fault has passed."""
import json
import os
import re
import signal
import subprocess
import threading
import time
from pathlib import Path

from gi.repository import GLib

import pointer
import stage
from client import Client
from driver import Role
from stage import ADD_IN, CLOCK_READ, EXCHANGE, GIVE_UP, GOOD, LIMIT, LOGIN_FAILED, LOOKUP, WAIT_BOX, wait_for

BUSY_BOX, READING_FAILED = "Horalink \u2013 Busy", "Reading Failed"
WAIT_LIMIT = 20  # seconds until the add-in asks the operator
HOST_PROGRAM = Path(__file__).parent / "scripted_host.py"
INTROSPECTABLE = "org.freedesktop.DBus.Introspectable"


class TooLate(Exception):
    """A state that lasts a moment was over before the fault came."""


def take_stage(arrangement, driver):
    """Display, bus and installation that this process plays on."""
    if stage.arrangement is not arrangement:
        stage.take(arrangement, driver)


def stand_still(pid):
    os.kill(pid, signal.SIGSTOP)
    stat = Path(f"/proc/{pid}/stat")
    wait_for(lambda: stat.read_text().rpartition(")")[2].split()[0] == "T", LIMIT, f"process {pid} to stand still")


class ScriptedHost:
    """The driver's end of scripted_host.py. `events` are what it told, in order; questions look behind `mark`."""

    def __init__(self, scene, exchange=EXCHANGE):
        self.scene, self.exchange = scene, exchange
        self.events, self.mark, self.tokens = [], 0, 0
        self.changed = threading.Condition()
        self.process = scene.start(["/usr/bin/python3", HOST_PROGRAM], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   text=True)
        threading.Thread(target=self._listen, args=[self.process.stdout], daemon=True).start()
        self.wait(lambda event: event.get("ready"), "the host to be ready")

    def _listen(self, stream):
        for line in stream:
            with self.changed:
                self.events.append(json.loads(line))
                self.changed.notify_all()

    def tell(self, do, **command):
        self.process.stdin.write(json.dumps({"do": do, **command}) + "\n")
        self.process.stdin.flush()
        if self.scene.frozen:
            self.scene.thaw(self)

    def since(self):
        return self.events[self.mark:]

    def skip(self):
        self.mark = len(self.events)

    def wait(self, matches, what, seconds=LIMIT, count=1, mark=None):
        mark = self.mark if mark is None else mark
        end = time.monotonic() + seconds
        with self.changed:
            while len(found := [event for event in self.events[mark:] if matches(event)]) < count:
                if not self.changed.wait(end - time.monotonic()):
                    raise TimeoutError(f"waited {seconds} s for {what}; the host saw {self.since()[-8:]}")
        return found[-1]

    def wait_for_call(self, member, count=1):
        return self.wait(lambda event: event.get("call") == member, f"{member} to be called", count=count)

    def wait_until_held(self, member):
        return self.wait(lambda event: event.get("held") == member, f"{member} to be held")

    def has(self, **wanted):
        return any(wanted.items() <= event.items() for event in self.since())

    def token(self):
        self.tokens += 1
        return f"t{self.tokens}."

    def answer_to(self, token):
        """A token is that of one call, or the name of a step that comes again behind a new mark."""
        mark = 0 if token.startswith("t") else self.mark
        return self.wait(lambda event: event.get("answered") == token, f"the answer to {token}", mark=mark)

    def ask(self, do, **command):
        token = self.token()
        self.tell(do, token=token, **command)
        return self.answer_to(token)

    def open(self):
        self.skip()
        self.tell("create")
        self.answer_to("create")
        self.register()
        self.show()
        return self

    def show(self):
        self.skip()
        self.tell("show")
        self.answer_to("show")
        self.scene.dialog(self.exchange)

    def register(self):
        self.skip()
        self.tell("register", exchange=self.exchange)
        self.answer_to("register")

    def calls(self):
        return [event["call"] for event in self.since() if event.get("call") in GOOD]

    def last_time(self):
        return [event["response"] for event in self.events if "response" in event][-1]

    def count(self, target, method, times):
        """Retain or Release so many times; how many of them failed with which number."""
        token = self.token()
        self.tell("count", token=token, target=target, method=method, times=times)
        answers = [self.answer_to(f"{token}{time}") for time in range(times)]
        return [answer["values"][1] if answer["error"] else 0 for answer in answers]

    def stop(self):
        stand_still(self.process.pid)

    def go_on(self):
        os.kill(self.process.pid, signal.SIGCONT)

    def kill(self):
        self.process.kill()
        self.process.wait()


# The call inside which the add-in is in a state, and how often it has to be called for that.
INSIDE = {"asking": ("oPBX", 1), "logging in": ("Login", 1), "reporting the login": ("ShowMessage", 1),
          "sending": ("SendRequest", 1), "reporting acceptance": ("ShowMessage", 2), "reading": ("Count", 1),
          "reporting results": ("ShowResults", 1), "logging out": ("LogOut", 1)}


class Scene(stage.EndToEndTest):
    """One add-in process with its host, and beside them a client that keeps the process unless it is `alone`."""

    host = keeper = usual_pointer = None
    frozen = False

    def begin_cell(self):
        """What a fault tells of itself: it has answered the request, with which calls; it has brought another host;
        it has let go of the layer. `seen` has the titles of the boxes that were closed."""
        self.answered, self.tokens, self.other, self.layer_is_gone, self.seen = False, [], None, False, []

    def runTest(self):
        """Only the tools of a test case are wanted."""

    def raise_curtain(self, alone):
        self.begin()
        self.process = stage.arrangement.start([stage.arrangement.add_in, "-Embedding"])
        self.wait_for(lambda: stage.bus.name_has_owner(stage.ADD_IN_CLASS), "the add-in to serve its class")
        self.keeper = None if alone else Client(self).created()
        self.host = ScriptedHost(self).open()
        self.exchange_once()
        self.usual_pointer = self.pointer()

    def close_curtain(self):
        """All clients go: the process has to follow, and with a good status."""
        self.leave_nothing_behind()
        self.assert_good_end()

    def assert_good_end(self):
        status = self.process.wait(LIMIT)
        stage.arrangement.processes.remove(self.process)
        if status:
            raise AssertionError(f"the add-in ended with status {status}")

    def press_lookup(self):
        self.press(LOOKUP)

    # --- the states -------------------------------------------------------------------------------

    def enter(self, state):
        self.host.skip()
        if state in INSIDE:
            return self._enter_call(*INSIDE[state])
        return getattr(self, "_enter_" + state.replace(" ", "_"))()

    def _enter_call(self, member, count):
        if count == 2:
            self.host.tell("answering", value=False)
            self.host.tell("hold", member="SendRequest")
            self.press_lookup()
            self.host.wait_until_held("SendRequest")
            self.host.tell("hold", member=member)
            self.host.tell("answer", member="SendRequest", kind="good")
        else:
            self.host.tell("hold", member=member)
            self.press_lookup()
        self.host.wait_until_held(member)

    def _enter_idle(self):
        self.wait_until_enabled()

    def _enter_hidden(self):
        self.press(stage.CLOSE)
        self.wait_for(lambda: not stage.driver.titles(ADD_IN), "the dialog to hide")

    def _enter_armed(self):
        """What lasts for a tenth of a second: the add-in stands still until click and fault have both been sent."""
        button = stage.driver.find(ADD_IN, LOOKUP, Role.PUSH_BUTTON)
        stage.driver.aim(button)
        stand_still(self.process.pid)
        self.frozen = True
        stage.driver.click_here()

    def thaw(self, host=None):
        self.frozen = False
        if host:
            host.ask("state")
        os.kill(self.process.pid, signal.SIGCONT)

    def _enter_waiting(self):
        self.host.tell("answering", value=False)
        self.press_lookup()
        self.host.wait_for_call("ShowMessage", 2)
        # What follows the answer to a call on the bus is served behind what that answer has set going.
        self.host.ask("invoke", target="dialog", member="CheckLoadError", kind=2, arguments=[])

    def _enter_asked(self):
        self._enter_waiting()
        self.box_text(WAIT_BOX, WAIT_LIMIT + LIMIT)

    def _enter_answered(self):
        """As armed: the add-in finds the end of its CallBack and the fault together."""
        self._enter_call("LogOut", 1)
        stand_still(self.process.pid)
        self.host.tell("answer", member="LogOut", kind="good")
        self.host.ask("state")
        self.frozen = True

    def _enter_showing(self):
        self.press_lookup()
        self.box_text(CLOCK_READ)

    def _enter_failed(self):
        self.host.tell("script", member="Login", kind="raise", number=1004)
        self.press_lookup()
        self.box_text(LOGIN_FAILED)

    # --- what the operator does -------------------------------------------------------------------

    def take_boxes(self, expected):
        """Closes the boxes as they come, the uppermost first; they have to be these."""
        for title in expected:
            try:
                self.wait_for(lambda: title in self.boxes(), f"the box '{title}'", WAIT_LIMIT + LIMIT)
            except TimeoutError as error:
                raise AssertionError(f"{error}, of {expected}; there are {self.boxes()}") from error
            self.close_one(title)
            self.seen.append(title)

    def close_one(self, title):
        """Presses the button of the uppermost box with this title. Behind it the next may come, with another text."""
        box = self.boxes_of(title)[-1]
        before = self.shown(title)
        stage.driver.click(stage.driver.button(box, GIVE_UP if title in (WAIT_BOX, BUSY_BOX) else None))
        self.wait_for(lambda: self.shown(title) not in (before, None), f"the box '{title}' to close")

    @staticmethod
    def boxes_of(title):
        return [window for window in stage.driver.windows(ADD_IN) if window.get_name() == title]

    def shown(self, title):
        """The texts of all boxes with this title; nothing that could be read while one of them goes."""
        try:
            return [stage.driver.texts(box) for box in self.boxes_of(title)]
        except GLib.Error:
            return None

    def exchange_once(self):
        """A lookup that has to succeed, with the answer to this very request."""
        self.host.tell("answering", value=True)
        self.host.tell("unscript")
        self.host.skip()
        self.wait_until_enabled()
        self.press_lookup()
        text = self.close_box(CLOCK_READ)
        if self.host.last_time() not in text:
            raise AssertionError(f"the box shows {text!r}, the answer was {self.host.last_time()}")
        self.host.answer_to("callback")
        calls = self.host.calls()
        # What ends the request before this one may come late.
        begin = calls.index("Login") - 1 if "Login" in calls else 0
        self.assertEqual(calls[begin:], GOOD, self.host.events[-40:])

    # --- behind the fault -------------------------------------------------------------------------

    def play_on(self, state):
        """The host does what it would have done: answers what it holds, and a request that waits."""
        if state in INSIDE:
            self.host.tell("answer_if_held", member=INSIDE[state][0])
        if state in ("reporting acceptance", "waiting", "asked") and not self.answered:
            self.tokens.append(self.host.token())
            self.host.tell("callback", token=self.tokens[-1])

    def operator_was_asked(self):
        return bool({WAIT_BOX, BUSY_BOX} & set(self.seen))

    def host_goes_on(self, host_died):
        """The host that got the request is still the one that serves it."""
        return not (host_died or self.other or self.operator_was_asked())

    def wait_for_pointer(self):
        """Another wait for the host would take longer."""
        self.wait_for(lambda: self.pointer() == self.usual_pointer, "the pointer to come back", WAIT_LIMIT / 2)

    def pointer(self):
        stage.driver.aim(stage.driver.find(ADD_IN, LOOKUP, Role.PUSH_BUTTON))
        return pointer.picture()

    def look_over(self, state, host_died):
        former = self.host
        if self.other:
            self.other.kill()
            self.host.register()
        if host_died:
            self.replace_host()
        elif self.layer_is_gone:
            self.host.open()
        if state == "hidden":
            self.host.show()
        for token in self.tokens:
            self.host.answer_to(token)
        if self.process.poll() is not None:
            raise AssertionError(f"the add-in has ended with status {self.process.returncode}")
        self.assertEqual(self.boxes(), [])
        self.exchange_once()
        if host_died:
            former.kill()
        self.assert_no_reference_left()

    def assert_no_reference_left(self):
        """The add-in holds of the host what it was registered with; of its own objects only those are there that
        somebody holds: the layers and the dialog."""
        def host_side():
            return self.host.ask("state")["values"][0] == {"/Host": 1}
        self.wait_for(host_side, "the add-in to give back what it held of the host's")
        if self.keeper:
            self.wait_for(lambda: len(self.objects()) <= 3, f"records to go: {self.objects()}")

    def objects(self):
        (text, *_) = self.keeper.ask(self.keeper.owner, "/Object", INTROSPECTABLE, "Introspect")
        return re.findall(r'node name="(\d+)"', text)

    def replace_host(self):
        """Another host for a dialog whose own has gone."""
        self.host = ScriptedHost(self).open()
        stage.driver.raise_window(stage.dialog_title())

    def is_gone(self):
        return self.process.poll() is not None
