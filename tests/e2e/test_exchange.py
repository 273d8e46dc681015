"""Exchanges whose clock is real: through ssh, set by Debian's own clock service, by clicks in the add-in."""
import os
import re
import signal
import time
from datetime import date, datetime, timedelta, timezone
from zoneinfo import ZoneInfo

import end_to_end
import stage
from driver import Role
from end_to_end import BUILD, Host, run
from far_side import FarSide
from stage import ADD_IN, CLOCK_READ, LOOKUP, UPDATE, dialog_title

AHEAD, LONG = 1000, 40  # seconds: the far clock before it is set; the link has limits of 12 and 6
UPDATED, FAILED, NOT_READ = "The date and time of the PBX have been updated.", "Update Failed", "Reading Failed"
NO_ANSWER, NOT_ALLOWED = "(no valid answer from the PBX)", "CODE NOT ALLOWED"
NEW_YORK = ZoneInfo("America/New_York")
far = None


def setUpModule():
    global far
    end_to_end.open_stage()
    far = FarSide(stage.arrangement, run, BUILD / "tests/e2e/libown_clock.so")


def lose(connection_first):
    """The connection while the clock service stands still, which then is killed, or goes on."""
    far.signal_connections(signal.SIGKILL)
    if connection_first:
        far.kill_service()
    else:
        os.kill(far.service(), signal.SIGCONT)


# The place of the exchange and what is wrong there; what is done while the clock service stands still in the middle of
# a write; what the operator sees and the host says; whether the clock has been set.
FAILURES = {
    "no route": ("closed,set", "", None, NO_ANSWER, "It can't be reached: .*Connection refused", False),
    "key refused": ("keyless,set", "", None, NO_ANSWER, "It refused this user's ssh keys", False),
    "host key unknown": ("stranger,set", "", None, NO_ANSWER, "Its host key is unknown. Run .*ssh stranger", False),
    "host key changed": ("changed,set", "", None, NO_ANSWER, "Its host key isn't the known one", False),
    "no bridge": ("far,set", "bridgeless", None, NO_ANSWER, "It has no systemd-stdio-bridge", False),
    "no clock service": ("far,set", "absent", None, NO_ANSWER, "It has no clock service", False),
    "refused by polkit": ("far,set", "refusing", None, NOT_ALLOWED, "Its rules .polkit. don't let", False),
    "kept by NTP": ("far,set", "ntp", None, NOT_ALLOWED, "It keeps its clock by NTP", False),
    "only to be read": ("far", "", None, NOT_ALLOWED, "Its clock may only be read", False),
    "lost before it was set": ("far,set", "stop-before", lambda: lose(True), NO_ANSWER,
                               "The connection was lost. The clock was not set.", False),
    "lost after it was set": ("far,set", "stop-after", lambda: lose(False), UPDATED,
                              "The connection was lost. The clock has been set.", True),
    "clock service killed": ("far,set", "stop-before", lambda: far.kill_service(), NO_ANSWER,
                             "Its clock service ended without an answer. The clock was not set.", False),
    "answer after the limit": ("far,set", "stop-before", lambda: None, NO_ANSWER,
                               "It didn't answer in time. Whether the clock was set isn't known: read it.", False),
}


def next_change():
    """The day on which the clocks are put forward next over there, from two to three."""
    days = (date.today() + timedelta(days=ahead) for ahead in range(1, 400))
    return next(day for day in days if datetime(day.year, day.month, day.day, 2, 30, tzinfo=NEW_YORK).astimezone(
        timezone.utc).astimezone(NEW_YORK).hour != 2)


class Exchanges(stage.EndToEndTest):
    def open(self, place, *faults):
        """The dialog for an exchange there."""
        far.reset(*faults, ahead=AHEAD)
        self.exchange = place.partition(",")[0]
        self.host = Host(self, "--exchange", f"{self.exchange}=ssh:{place}", exchange=self.exchange,
                         environment=far.environment).open()
        stage.driver.raise_window(dialog_title(self.exchange))

    def assert_host_says(self, sentence):
        said = [line for line in self.host.lines() if line.startswith("ShowMessage(")]
        self.assertRegex(said[-1], rf'ShowMessage\("{self.exchange}: {sentence}')

    def assert_shown(self):
        """A lookup succeeds, and its box shows what the far clock shows where that is."""
        text = self.look_up()
        shown = datetime(*map(int, re.findall(r"\d+", text)), tzinfo=NEW_YORK).timestamp()
        clock, took = far.clock()
        self.assertLess(abs(shown - clock), 10 + took)  # the box was closed meanwhile

    def update(self, box, title=CLOCK_READ):
        self.press(UPDATE)
        self.assertIn(box, self.close_box(title, seconds=LONG))
        self.wait_until_enabled(UPDATE)

    def test_it_is_right_to_the_second_in_another_time_zone_and_over_a_change_of_its_clocks(self):
        self.open("far,set")
        self.assert_shown()
        self.assertEqual((far.folder / "asked").read_text().split("\n")[-4:], ["--", "far", "systemd-stdio-bridge", ""])
        connection = far.connections()
        self.update(UPDATED)
        clock, took = far.clock()
        shown = datetime.fromtimestamp(clock, NEW_YORK).replace(tzinfo=None)
        self.assertLess(abs(datetime.now() - shown), timedelta(seconds=took + 0.1))
        self.assert_host_says("clock set")
        change = next_change()
        self.choose_day(change)
        self.choose_hour("02")
        self.update("DATA ERROR", FAILED)
        self.assert_host_says("Its clocks skip that time")
        self.choose_hour("03")
        hour, minute, second, _ = self.time_parts()
        sent = time.monotonic()
        self.update(UPDATED)
        wanted = datetime(change.year, change.month, change.day, hour + 4, minute, second, tzinfo=timezone.utc).timestamp()
        clock, took = far.clock()
        self.assertLess(0, clock - wanted)
        self.assertLess(clock - wanted, time.monotonic() - sent)
        self.assert_shown()
        self.assertEqual(far.connections(), connection)

    def choose_day(self, day):
        """By hand, as the time from now on."""
        for name in ("Follow the time of this PC", "Follow the date of this PC"):
            stage.driver.untick(stage.driver.find(ADD_IN, name, Role.CHECK_BOX))
        self.choose_part("Hour")
        today = date.today()
        months = (day.year - today.year) * 12 + day.month - today.month
        stage.driver.press("Tab", "Tab", "Tab", *["Next"] * months, "Return", *["Right"] * (day.day - 1))

    def part(self, name):
        return stage.driver.find(ADD_IN, name, Role.TEXT)

    def time_parts(self):
        return [int(text) if text.isdigit() else text for text in
                (stage.driver.value(self.part(name)) for name in ("Hour", "Minute", "Second", "AM or PM"))]

    def choose_part(self, name):
        stage.driver.click(self.part(name))
        self.wait_for(lambda: stage.driver.is_focused(self.part(name)), f"'{name}' to be chosen")

    def choose_hour(self, hour):
        """In the morning."""
        for name, wanted in (("Hour", hour), ("AM or PM", "AM")):
            self.choose_part(name)
            while (before := stage.driver.value(self.part(name))) != wanted:
                stage.driver.press("Up")
                self.wait_for(lambda before=before: stage.driver.value(self.part(name)) != before, f"{name} to change")

    def test_failures(self):
        for name, (place, fault, act, box, sentence, is_set) in FAILURES.items():
            with self.case(name):
                self.open(place, *fault.split())
                self.press(UPDATE)
                if act:
                    far.wait_until_stopped()
                    act()
                self.assertIn(box, self.close_box(CLOCK_READ if is_set else FAILED, seconds=LONG))
                self.assert_host_says(sentence)
                self.assertEqual(abs(round(far.ahead()) - AHEAD) > 0, is_set)
                self.wait_until_enabled(UPDATE)
                self.go_on(place)

    def go_on(self, place):
        """The dialog reads the clock again when what was wrong is mended, and else says that it can't."""
        if place.startswith("far"):
            if pid := far.service():
                os.kill(pid, signal.SIGCONT)
            far.mend()
            self.assert_shown()
        else:
            self.press(LOOKUP)
            self.close_box(NOT_READ)
            self.wait_until_enabled()

    def test_a_server_that_stands_still(self):
        """While nothing is being written."""
        self.open("far,set")
        self.assert_shown()
        far.signal_connections(signal.SIGSTOP)
        self.press(LOOKUP)
        self.close_box(NOT_READ, seconds=LONG)
        self.assert_host_says("It didn't answer in time.")
        self.wait_until_enabled()
        self.assert_shown()
