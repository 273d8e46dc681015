"""Exchanges whose clock is real: through ssh, set by Debian's own clock service, by clicks in the add-in."""
import os
import re
import signal
import time
from datetime import date, datetime, timedelta, timezone
from zoneinfo import ZoneInfo

import testbed
from driver import Role
from far_side import AHEAD, ZONE, FarSide
from testbed import ADD_IN, CLOCK_READ, LOOKUP, SWITCHDESK, UPDATE, Host

HASTE = 2  # for a host whose limits are reached, of 12 and 6 seconds
UPDATED, FAILED, NOT_READ = "The date and time of the PBX have been updated.", "Update Failed", "Reading Failed"
NO_ANSWER, NOT_ALLOWED = "(no valid answer from the PBX)", "CODE NOT ALLOWED"
NEW_YORK = ZoneInfo(ZONE)
# The day on which the clocks are put forward next over there, from two to three.
DAYS = [date.today() + timedelta(days=ahead) for ahead in range(1, 400)]
CHANGE = next(day for day in DAYS if datetime(day.year, day.month, day.day, 2, 30, tzinfo=NEW_YORK).astimezone(
    timezone.utc).astimezone(NEW_YORK).hour != 2)
# Where the exchange is and what is wrong there; what the clock service gets, and its connection is lost, while it is
# stopped in the middle of a write; what the operator sees and the host says.
FAILURES = [
    ("ssh:closed,set", "", None, NO_ANSWER, "It can't be reached: .*Connection refused"),
    ("ssh:keyless,set", "", None, NO_ANSWER, "It refused this user's ssh keys"),
    ("ssh:stranger,set", "", None, NO_ANSWER, "Its host key is unknown. Run .*ssh stranger"),
    ("ssh:changed,set", "", None, NO_ANSWER, "Its host key isn't the known one"),
    ("ssh:far,set", "bridgeless", None, NO_ANSWER, "It has no systemd-stdio-bridge"),
    ("ssh:far,set", "absent", None, NO_ANSWER, "It has no clock service"),
    ("ssh:far,set", "refusing org.freedesktop.DBus.Error.InteractiveAuthorizationRequired", None, NOT_ALLOWED,
     "Its rules .polkit. don't let"),
    ("ssh:far,set", "refusing org.freedesktop.timedate1.AutomaticTimeSyncEnabled", None, NOT_ALLOWED,
     "It keeps its clock by NTP"),
    ("local", "", None, NOT_ALLOWED, "Its clock may only be read"),
    ("ssh:far,set", "stop-before", signal.SIGKILL, NO_ANSWER, "The connection was lost. The clock was not set."),
    ("ssh:far,set", "stop-after", signal.SIGCONT, UPDATED, "The connection was lost. The clock shows the new time."),
    ("local,set", "stop-before", signal.SIGKILL, NO_ANSWER,
     "Its clock service ended without an answer. The clock was not set."),
    ("ssh:far,set", "stop-before", None, NO_ANSWER,
     "It didn't answer in time. Whether the clock was set isn't known: read it."),
]


far = None


def setUpModule():
    global far
    testbed.set_up()
    far = FarSide(testbed.sandbox, testbed.OWN_TIME)


class Exchanges(testbed.EndToEndTest):
    def open(self, place, fault="", haste=1):
        """The dialog for an exchange there."""
        far.reset(fault)
        environment = {**far.environment, **testbed.hasty(haste)}
        self.host = Host(self, "--exchange", f"far={place}", exchange="far", environment=environment).open()
        testbed.driver.raise_window(testbed.dialog_title("far"))

    def assert_shown(self):
        """A lookup succeeds, and its box shows what the far clock shows where that is."""
        shown = datetime(*map(int, re.findall(r"\d+", self.look_up())), tzinfo=NEW_YORK).timestamp()
        self.assertLess(abs(shown - time.time() - far.ahead()), 10)  # the box was closed meanwhile

    def ask(self, button, text, title, sentence):
        self.press(button)
        self.expect(text, title, sentence)
        testbed.driver.wait_until_enabled(ADD_IN, button)

    def expect(self, text, title, sentence):
        self.assertIn(text, self.close_box(title))
        self.assertRegex(self.host.lines("ShowMessage(")[-1], rf'ShowMessage\("{sentence}')

    def choose(self, name, wanted=None):
        """A part of the time, and what it is to show."""
        part = testbed.driver.find(ADD_IN, name, Role.TEXT)
        testbed.driver.click(part)
        self.wait_for(lambda: testbed.driver.is_focused(part), f"'{name}' to be chosen")
        while wanted not in (None, before := testbed.driver.value(part)):
            testbed.driver.press("Up")
            self.wait_for(lambda before=before: testbed.driver.value(part) != before, f"'{name}' to change")
        return before

    def test_it_is_right_to_the_second_in_another_time_zone_and_over_a_change_of_its_clocks(self):
        self.open("ssh:far,set", "slow")
        self.assert_shown()
        self.ask(UPDATE, UPDATED, CLOCK_READ, "clock set")
        shown = datetime.fromtimestamp(time.time() + far.ahead(), NEW_YORK).replace(tzinfo=None)
        self.assertLess(abs(datetime.now() - shown), timedelta(seconds=0.25))
        for name in ("Follow the time of this PC", "Follow the date of this PC"):
            testbed.driver.untick(testbed.driver.find(ADD_IN, name, Role.CHECK_BOX))
        self.choose("Hour")  # three controls ahead of the calendar
        months = (CHANGE.year - date.today().year) * 12 + CHANGE.month - date.today().month
        testbed.driver.press("Tab", "Tab", "Tab", *["Next"] * months, "Return", *["Right"] * (CHANGE.day - 1))
        self.choose("AM or PM", "AM")
        self.choose("Hour", "02")
        self.ask(UPDATE, "DATA ERROR", FAILED, "Its clocks skip that time")
        minute, second, hour = (int(self.choose(*part)) for part in (["Minute"], ["Second"], ["Hour", "03"]))
        sent = time.time()
        self.ask(UPDATE, UPDATED, CLOCK_READ, "clock set")
        chosen = datetime(CHANGE.year, CHANGE.month, CHANGE.day, hour, minute, second, tzinfo=NEW_YORK)
        # It counts from somewhere between the click and the end.
        self.assertTrue(sent < chosen.timestamp() - far.ahead() < time.time(), (sent, chosen, far.ahead()))
        self.assert_shown()

    def test_failures(self):
        """When what was wrong there is mended, the dialog reads the clock, or says again that it can't."""
        for place, fault, number, text, sentence in FAILURES:
            with self.case(f"{place} {fault}: {sentence}"):
                self.open(place, fault, haste=HASTE if fault == "stop-before" and not number else 1)
                self.press(UPDATE)
                if number:
                    far.wait_until_service_stands_still()
                    if place.startswith("ssh"):
                        far.cut_connection()
                    os.kill(far.service(), number)
                self.expect(text, CLOCK_READ if text == UPDATED else FAILED, sentence)
                self.assertIs(round(far.ahead()) == AHEAD, text != UPDATED)
                testbed.driver.wait_until_enabled(ADD_IN, UPDATE)
                far.mend()
                if place.startswith(("ssh:far", "local")):
                    self.assert_shown()
                else:
                    self.ask(LOOKUP, "", NOT_READ, sentence)

    def test_a_write_whose_add_in_ends_is_reported(self):
        self.open("ssh:far,set", "stop-before")
        self.press(UPDATE)
        far.wait_until_service_stands_still()
        os.kill(testbed.pids(ADD_IN)[0], signal.SIGKILL)
        self.host.wait_for_line("# client of L1 has left")
        os.kill(far.service(), signal.SIGCONT)
        messages = testbed.driver.find(SWITCHDESK, "Messages", Role.TEXT)
        self.wait_for(lambda: "far: clock set" in testbed.driver.value(messages), "the clock to be set")
