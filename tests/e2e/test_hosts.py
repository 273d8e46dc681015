"""Hosts that are killed, stopped for a moment, or stopped for ever, in each state of a request.

The operator then sees these boxes and no other, the next lookup of another host succeeds in the same process, nothing
is left of what either side held, and the process ends well with its last client.
"""
import signal
import sys
from pathlib import Path

import testbed
from driver import Role
from host import LIMIT, READ, clock, good, result
from testbed import ADD_IN, CLOCK_READ, GIVE_UP, LOGIN_FAILED, LOOKUP, WAIT_BOX, OwnHostTest, chosen
from testbed import set_up as setUpModule  # noqa: F401

ANSWER, FAILED, NOTHING = [CLOCK_READ], [LOGIN_FAILED], []
# The member at whose call the host gets the signal, if it sends that to itself; the boxes where it is killed, stands
# still for a moment, or for ever; and how many calls come in that last case before what logs out.
STATES = {
    "idle": (None, NOTHING, NOTHING, NOTHING, 0),
    "armed": (None, FAILED, ANSWER, [WAIT_BOX] + FAILED, 1),
    "logging in": ("Login", FAILED, ANSWER, [WAIT_BOX] + FAILED, 2),
    "sending": ("SendRequest", NOTHING, ANSWER, [WAIT_BOX], 5),
    "waiting": (None, NOTHING, ANSWER, [WAIT_BOX], 6),
    "telling": ("ShowResults", ANSWER, ANSWER, [WAIT_BOX] + ANSWER, 7),
    "logging out": ("LogOut", ANSWER, ANSWER, [WAIT_BOX] + ANSWER, 9),
    "showing": (None, ANSWER, ANSWER, ANSWER, 9),
}
FAULTS = ("killed", "stopped", "never wakes", "killed alone")  # alone: nobody else holds the add-in
ALL = [(state, fault) for state in STATES for fault in FAULTS]
QUICK = [case for case in ALL if case[1] in FAULTS[:2] or case[0] in ("logging in", "telling")]
GOOD = good("L1")


def wait_until_still(test, process):
    stat = Path(f"/proc/{process.pid}/stat")
    test.wait_for(lambda: stat.read_text().rpartition(")")[2].split()[0] in "TZ", "the process to be stopped")


class Hosts(OwnHostTest):
    def start_all(self, state, fault):
        self.add_in, self.keeper = self.start_add_in(**testbed.hasty(4 if fault == "never wakes" else 1))
        self.layer = result(self.keeper.create())
        self.harm = signal.SIGKILL if "killed" in fault else signal.SIGSTOP
        self.member = STATES[state][0]
        answers = "" if state in ("waiting", "showing") else "answers"
        self.log = testbed.sandbox.folder / "host.log"
        with open(self.log, "w", encoding="utf-8") as log:
            program = sys.executable, Path(__file__).with_name("host.py")
            self.host = self.start([*program, self.member or "", self.harm.name, answers], stdout=log)
        self.wait_for(lambda: "open" in self.log.read_text().splitlines(), "the host to open the dialog")
        testbed.driver.raise_window(testbed.dialog_title())

    def wait_for_calls(self, calls):
        self.wait_for(lambda: self.log.read_text().splitlines()[2:] == calls, f"{calls}, of {self.log.read_text()}")

    def is_served(self):
        """What was on its way to the add-in ahead of this has arrived."""
        self.assertTrue(result(self.keeper.invoke(self.layer, "Visible", READ)))

    def enter(self, state):
        if state == "armed":  # for a tenth of a second: the add-in is stopped until the harm is done
            testbed.driver.aim(testbed.driver.find(ADD_IN, LOOKUP, Role.PUSH_BUTTON))
            self.add_in.send_signal(signal.SIGSTOP)
            wait_until_still(self, self.add_in)
            testbed.driver.click_here()
        elif state != "idle":
            self.press(LOOKUP)
        if state in ("waiting", "showing"):
            self.wait_for_calls(GOOD[:6])
            self.is_served()
        if state == "showing":
            self.host.send_signal(signal.SIGUSR1)
            self.wait_for(lambda: self.boxes() == [CLOCK_READ], "the answer")
            self.wait_for_calls(GOOD)

    def do_harm(self, state, fault):
        if not self.member:
            self.host.send_signal(self.harm)
        wait_until_still(self, self.host)
        if state == "armed":
            self.add_in.send_signal(signal.SIGCONT)
        if fault == "stopped":
            self.is_served()
            if state == "waiting":
                self.host.send_signal(signal.SIGUSR1)
            self.host.send_signal(signal.SIGCONT)

    def go_on(self, state, fault):
        """What the operator sees, what another host does, and what the stopped one gets when it wakes."""
        *boxes, calls = STATES[state][1:]
        for title in boxes[FAULTS.index(fault)]:
            self.wait_for(lambda title=title: title in self.boxes(), f"the box '{title}'")
            self.close_box(title, GIVE_UP if title == WAIT_BOX else None)
        self.wait_for(lambda: not self.boxes(), "no box")
        if fault == "stopped" and state != "idle":
            self.wait_for_calls(GOOD)
        self.keeper.open(self.layer)
        testbed.driver.raise_window(testbed.dialog_title())
        self.assertIn(clock("L1"), self.look_up())
        self.assertEqual(self.keeper.asked_by(self.layer), GOOD)
        if fault == "never wakes":
            self.host.send_signal(signal.SIGCONT)
            self.wait_for_calls(GOOD[:calls] + (GOOD[9:] if calls > 1 else []))
        self.host.kill()
        dialog = self.keeper.client()
        self.wait_for(lambda: self.keeper.objects(self.layer) == {self.layer[1], dialog[1]}, "all other objects to go")
        self.assert_good_end(self.add_in, self.keeper, dialog, self.layer)

    def test_harm(self):
        for state, fault in chosen(QUICK, ALL):
            with self.case(f"{state}/{fault}"):
                self.start_all(state, fault)
                self.enter(state)
                if fault == "killed alone":
                    self.keeper.bus.close_sync()
                self.do_harm(state, fault)
                if fault == "killed alone":
                    self.assertEqual(self.add_in.wait(LIMIT), 0)
                else:
                    self.go_on(state, fault)
