"""Hosts that leave the bus, freeze for a moment, or wake up late, in each state of a request.

The operator then sees these boxes and no other, the next lookup of another host succeeds in the same process, nothing
is left of what either side held, and the process ends well with its last client.
"""
import testbed
from host import LIMIT, READ, result
from testbed import CLOCK_READ, GIVE_UP, LOGIN_FAILED, LOOKUP, WAIT_BOX, OwnHostTest, chosen
from testbed import set_up as setUpModule  # noqa: F401

ANSWER, FAILED, NOTHING = [CLOCK_READ], [LOGIN_FAILED], []
# The member in which the host halts, if it does so in a call; the boxes where it leaves, wakes at once, or late.
STATES = {
    "idle": (None, NOTHING, NOTHING, NOTHING),
    "logging in": ("Login", FAILED, ANSWER, [WAIT_BOX] + FAILED),
    "sending": ("SendRequest", NOTHING, ANSWER, [WAIT_BOX]),
    "waiting": (None, NOTHING, ANSWER, [WAIT_BOX]),
    "telling": ("ShowResults", ANSWER, ANSWER, [WAIT_BOX] + ANSWER),
    "logging out": ("LogOut", ANSWER, ANSWER, [WAIT_BOX] + ANSWER),
    "showing": (None, ANSWER, ANSWER, ANSWER),
}
FAULTS = ("leaves", "stops", "wakes late", "leaves alone")  # alone: nobody else holds the add-in
ALL = [(state, fault) for state in STATES for fault in FAULTS]
QUICK = [case for case in ALL if case[1] in FAULTS[:2] or case[0] in ("logging in", "telling")]
# What the add-in calls in a good lookup.
GOOD = ["oPBX", "Login Main Office", "ShowMessage PBX clock request: L1", "oPBX", "SendRequest LOOKUP_CLOCK",
        "ShowMessage PBX clock request: R", "ShowResults PBX Clock (Main Office) /Response/L1", "ShowMessage OK",
        "ShowCode 0", "oPBX", "LogOut Main Office L1"]


class Hosts(OwnHostTest):
    def wait_for_calls(self, calls):
        self.wait_for(lambda: [call for _, call in self.host.calls[1:]] == calls, f"{calls}, of {self.host.calls}")

    def is_served(self):
        """What was on its way to the add-in ahead of this has arrived."""
        self.assertTrue(result(self.keeper.invoke(self.layer, "Visible", READ)))

    def enter(self, state):
        self.host.open()
        testbed.driver.raise_window(testbed.dialog_title())
        self.host.halts_at, self.host.calls_back = STATES[state][0], state not in ("waiting", "showing")
        if state != "idle":
            self.press(LOOKUP)
        if not self.host.calls_back:
            self.wait_for_calls(GOOD[:6])
            self.is_served()
        if state == "showing":
            self.host.call_back()
            self.wait_for(lambda: self.boxes() == [CLOCK_READ], "the answer")
            self.wait_for_calls(GOOD)
        if not self.host.halts_at:
            self.host.later(self.host.halt)
        self.assertTrue(self.host.halted.wait(LIMIT))

    def see_and_go_on(self, state, fault):
        """What the operator sees, what another host does, and what becomes of the references to this one."""
        for title in STATES[state][1 + FAULTS.index(fault)]:
            self.wait_for(lambda title=title: title in self.boxes(), f"the box '{title}'")
            self.close_box(title, GIVE_UP if title == WAIT_BOX else None)
        self.wait_for(lambda: not self.boxes(), "no box")
        if fault == "stops" and state != "idle":
            self.wait_for_calls(GOOD)
        self.keeper.open(self.layer)
        testbed.driver.raise_window(testbed.dialog_title())
        self.look_up()
        self.assertEqual(self.keeper.asked_by(self.layer), GOOD)
        self.host.wakes.set()
        if "leaves" not in fault:
            self.wait_for(lambda: not +self.host.kept, "the host's objects to be given back")
            called = [call.split()[0] for _, call in self.host.calls]
            self.assertEqual(called.count("Login"), called.count("LogOut"))
        self.host.leave()
        dialog = self.keeper.client()
        self.wait_for(lambda: self.keeper.objects(self.layer) == {self.layer[1], dialog[1]}, "all other objects to go")
        self.assert_good_end(self.add_in, self.keeper, dialog, self.layer)

    def test_harm(self):
        for state, fault in chosen(QUICK, ALL):
            with self.case(f"{state}/{fault}"):
                self.add_in, self.keeper = self.start_add_in(**testbed.hasty(4 if fault == "wakes late" else 1))
                self.layer, self.host = result(self.keeper.create()), self.join()
                self.enter(state)
                if fault == "leaves alone":
                    self.keeper.bus.close_sync()
                if "leaves" in fault:
                    self.host.bus.close_sync()
                if fault == "leaves alone":
                    self.assertEqual(self.add_in.wait(LIMIT), 0)
                    continue
                if fault == "stops":
                    self.is_served()
                    self.host.wakes.set()
                    if state == "waiting":
                        self.host.call_back()
                self.see_and_go_on(state, fault)
