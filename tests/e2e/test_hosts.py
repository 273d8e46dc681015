"""Hosts that are killed, stopped for a moment, or stopped for ever, in each state of a request.

The operator then sees these boxes and no other, the next lookup of another host succeeds in the same process, nothing
is left of what either side held, and the process ends well with its last client.
"""
import signal
import sys
from pathlib import Path

from end_to_end import OwnHostTest, chosen
from end_to_end import open_own_stage as setUpModule  # noqa: F401

import stage
from driver import Role
from host import LIMIT, READ, asked, clock, good, logged_out, result, told
from stage import ADD_IN, CLOCK_READ, GIVE_UP, LOGIN_FAILED, LOOKUP, WAIT_BOX

ANSWER, FAILED, NOTHING = [CLOCK_READ], [LOGIN_FAILED], []
# The member at whose call the host gets the signal, if it sends that to itself; the boxes where it is killed, stands
# still for a moment, or for ever; and all calls of one that goes on after it was given up.
STATES = {
    "idle": (None, NOTHING, NOTHING, [WAIT_BOX], ["DisplayHelp Horalink.hlp"]),
    "armed": (None, FAILED, ANSWER, [WAIT_BOX] + FAILED, ["oPBX"]),
    "logging in": ("Login", FAILED, ANSWER, [WAIT_BOX] + FAILED, asked("L1")[:2] + logged_out("L1")),
    "sending": ("SendRequest", NOTHING, ANSWER, [WAIT_BOX], asked("L1")[:5] + logged_out("L1")),
    "waiting": (None, NOTHING, ANSWER, [WAIT_BOX], asked("L1") + logged_out("L1")),
    "asked": (None, NOTHING, ANSWER, [WAIT_BOX], asked("L1") + logged_out("L1")),
    "telling": ("ShowResults", ANSWER, ANSWER, [WAIT_BOX] + ANSWER, asked("L1") + told("L1")[:1] + logged_out("L1")),
    "logging out": ("LogOut", ANSWER, ANSWER, [WAIT_BOX] + ANSWER, good("L1")),
    "showing": (None, ANSWER, ANSWER, ANSWER, good("L1")),
}
FAULTS = ("killed", "stopped", "never wakes")
ALONE = [(state, "killed alone") for state in STATES]  # nobody else holds the add-in
ALL = [(state, fault) for state in STATES for fault in FAULTS] + ALONE
# The others wait for 20 seconds each.
QUICK = [(state, fault) for state, fault in ALL if state != "asked" and fault != FAULTS[2]] + \
    [("logging in", FAULTS[2]), ("telling", FAULTS[2])]


class Hosts(OwnHostTest):
    def start_all(self, state, fault):
        """The add-in, a client that keeps it whatever comes, and the host."""
        self.add_in, self.keeper = self.start_add_in()
        self.layer = result(self.keeper.create())
        self.harm = signal.SIGKILL if "killed" in fault else signal.SIGSTOP
        self.member, *self.boxes_of, self.calls_later = STATES[state]
        answers = "" if state in ("waiting", "asked", "showing") else "answers"
        self.log = stage.arrangement.folder / "host.log"
        with open(self.log, "w", encoding="utf-8") as log:
            self.host = self.start([sys.executable, Path(__file__).with_name("host.py"), self.member or "", self.harm.name,
                                    answers], stdout=log)
        self.wait_for(lambda: "open" in self.lines(), "the host to open the dialog")
        stage.driver.raise_window(stage.dialog_title())

    def lines(self):
        return self.log.read_text(encoding="utf-8").splitlines()

    def wait_for_calls(self, calls):
        self.wait_for(lambda: self.lines()[2:] == calls, f"{calls}, of {self.lines()[2:]}")

    def wait_until_still(self, process):
        stat = Path(f"/proc/{process.pid}/stat")
        self.wait_for(lambda: stat.read_text().rpartition(")")[2].split()[0] in "TZ", "the process to be stopped")

    def enter(self, state):
        if state == "armed":  # for a tenth of a second: the add-in is stopped until the harm is done
            stage.driver.aim(stage.driver.find(ADD_IN, LOOKUP, Role.PUSH_BUTTON))
            self.add_in.send_signal(signal.SIGSTOP)
            self.wait_until_still(self.add_in)
            stage.driver.click_here()
        elif state != "idle":
            self.press(LOOKUP)
        if state in ("waiting", "asked", "showing"):
            self.wait_for_calls(asked("L1"))
            self.assertTrue(result(self.keeper.invoke(self.layer, "Visible", READ)))  # follows what is under way
        if state == "asked":
            self.box_text(WAIT_BOX, LIMIT)
        if state == "showing":
            self.host.send_signal(signal.SIGUSR1)
            self.box_text(CLOCK_READ)
            self.wait_for_calls(good("L1"))

    def do_harm(self, state, fault):
        if not self.member:
            self.host.send_signal(self.harm)
        self.wait_until_still(self.host)
        if state == "armed":
            self.add_in.send_signal(signal.SIGCONT)
        if fault == "stopped":
            self.assertTrue(result(self.keeper.invoke(self.layer, "Visible", READ)))
            if state in ("waiting", "asked"):
                self.host.send_signal(signal.SIGUSR1)
            self.host.send_signal(signal.SIGCONT)
        if fault == "never wakes" and state == "idle":
            stage.driver.press("F1")

    def wake(self):
        self.host.send_signal(signal.SIGCONT)
        self.wait_for_calls(self.calls_later)

    def go_on(self, state, fault):
        """What the operator sees, what another host does, and what the stopped one gets when it wakes."""
        for title in self.boxes_of[FAULTS.index(fault)]:
            self.wait_for(lambda title=title: title in self.boxes(), f"the box '{title}'", LIMIT)
            self.close_box(title, GIVE_UP if title == WAIT_BOX else None)
        self.wait_for(lambda: not self.boxes(), "no box")
        if fault == "stopped" and state != "idle":
            self.wait_for_calls(good("L1"))
        self.keeper.open(self.layer)
        stage.driver.raise_window(stage.dialog_title())
        self.assertIn(clock("L1"), self.look_up())
        self.assertEqual(self.keeper.asked_by(self.layer), good("L1"))
        if fault == "never wakes":
            self.wake()
        self.host.kill()
        dialog = self.keeper.clients["L1"]
        self.wait_for(lambda: self.keeper.objects(self.layer) == {self.layer[1], dialog[1]}, "all other objects to go")
        self.assert_good_end(self.add_in, self.keeper, dialog, self.layer)

    def test_harm(self):
        for state, fault in chosen(QUICK, ALL):
            with self.case(f"{state}/{fault}"):
                self.start_all(state, fault)
                self.enter(state)
                if (state, fault) in ALONE:
                    self.keeper.bus.close_sync()
                self.do_harm(state, fault)
                if (state, fault) in ALONE:
                    self.assertEqual(self.add_in.wait(LIMIT), 0)
                else:
                    self.go_on(state, fault)
