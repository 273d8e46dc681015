"""The way of a request in a run that a host started: orders of calls, answers, and everything that can fail."""
import unittest
from datetime import date

import dbus

from end_to_end import Host
from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from client import Client
from driver import Role
from stage import (ADD_IN, CLOCK_READ, EXCHANGE, GIVE_UP, GOOD, LOGIN_FAILED, LOOKUP, SWITCHDESK, UPDATE,
                   EndToEndTest)

REQUEST = "PBX clock request: "
ACCEPTED = [f'"{REQUEST}L1"', f'"{REQUEST}R1"']
ALL_GOOD = [*ACCEPTED, '"OK"', "0"]
FAILED = ['"The PBX clock request failed : <7>"', "7"]
REFUSED_SEND = ["oPBX", "Login", "ShowMessage", "oPBX", "SendRequest", "ShowMessage", "oPBX", "LogOut"]
REFUSED_LOGIN = ["oPBX", "Login", "ShowMessage"]


class GoodExchange(EndToEndTest):
    def test_update_sets_the_clock_that_a_lookup_shows(self):
        host = Host(self, "--offset", "600").open()
        before = self.look_up()
        self.press(UPDATE)
        self.assertEqual(self.close_box("PBX Clock"), "The date and time of the PBX have been updated.")
        hour, minute = [int(stage.driver.value(stage.driver.find(ADD_IN, name, Role.TEXT))) for name in ("Hour", "Minute")]
        after = self.look_up()
        self.assertNotEqual(before[-8:-3], after[-8:-3])
        self.assertLessEqual((int(after[-8:-6]) * 60 + int(after[-5:-3]) - hour * 60 - minute) % 720, 1)
        self.assertEqual(host.calls(), GOOD * 3)

    def test_second_press_within_the_tick_sends_no_second_request(self):
        host = Host(self).open()
        stage.driver.click_twice(stage.driver.find(ADD_IN, LOOKUP, Role.PUSH_BUTTON))
        self.close_box(CLOCK_READ)
        self.assert_usable()
        self.assertEqual(host.calls(), GOOD * 2)


# Options of the host, what it is told of the request, the calls that it gets, and the title of the operator's
# box, if there is one.
FAILURES = [
    ("login raises", ["--login=raise"], [f'"{REQUEST}"'], REFUSED_LOGIN, LOGIN_FAILED),
    ("login BUSY", ["--login=BUSY"], [f'"{REQUEST}BUSY"'], REFUSED_LOGIN, None),
    ("send missing", ["--lack=SendRequest"], [ACCEPTED[0], f'"{REQUEST}"'], REFUSED_SEND, None),
    ("ErrCode 7 with a message", ["--errcode=7", "--message=Line down"], [*ACCEPTED, *FAILED], GOOD, None),
    ("results can't be shown", ["--raise=ShowResults"], ALL_GOOD, GOOD, CLOCK_READ),
    ("a missing time", ["--drop-item=2"], ALL_GOOD, GOOD, CLOCK_READ),
    ("an answer text for a value", ["--item=1:SecondData=DATA ERROR"], ALL_GOOD, GOOD, "Reading Failed"),
]


class Failures(EndToEndTest):
    def test_what_is_told_and_shown(self):
        for name, options, told, calls, box in FAILURES:
            with self.case(name):
                host = Host(self, "--logins=1", *options).open()
                self.press(LOOKUP)
                host.wait_for_line(calls[-1] + "(")
                if box:
                    self.close_box(box)
                if "ShowResults" in calls:
                    host.wait_for_line("# CallBack returned")
                self.assertEqual(host.told(), told)
                self.assertEqual(host.calls(), calls)
                host.skip()
                self.assert_usable()
                self.assertEqual(host.calls(), GOOD)

    def test_the_trace_says_what_was_passed_over_and_why_an_answer_was_judged_so(self):
        log = stage.arrangement.folder / "bus.log"
        before = len(log.read_text(encoding="utf-8").splitlines())
        Host(self, "--trace", exchange=None)
        stage.driver.window(SWITCHDESK)
        nobody = dbus.Struct((":1.99999", dbus.ObjectPath("/Host")))
        Client(self).created().call("RegisterPBX", 1, EXCHANGE, nobody, dbus.Int16(1))
        Host(self, "--item=0:SecondData=MMXXVI", "--lack=ShowCode").open()
        self.press(LOOKUP)
        self.close_box("Reading Failed")
        traced = [line for line in log.read_text(encoding="utf-8").splitlines()[before:] if line.startswith("horalink:")]
        self.assertEqual([line.partition(", ")[0] for line in traced], [
            "horalink: GetComData skipped: error 462",
            "horalink: ShowCode skipped: error 438",
            'horalink: item 0: SecondData "MMXXVI" and item 1: SecondData "' + f'{date.today():%m/%d}" aren\'t a date: reading failed'])

    def test_login_that_was_not_given_back_keeps_the_exchange_busy(self):
        host = Host(self, "--raise=LogOut").open()
        self.look_up()
        self.press(LOOKUP)
        host.wait_for_line(f'ShowMessage("{REQUEST}BUSY"')

    def test_update_that_the_exchange_refuses(self):
        Host(self, "--item=2:ExtraData=LNK_TIMEOUT").open()
        self.press(UPDATE)
        box = self.close_box("Update Failed")
        self.assertRegex(box, r"\nCM = 02, FD = 2, SD = \d{6} \(no valid answer from the PBX\)")
        self.assertNotIn("FD = 1", box)
        self.wait_until_enabled()

    def test_host_that_stays_busy(self):
        Host(self, "--busy=60").open()
        self.press(LOOKUP)
        self.assertIn("is busy", self.close_box("Horalink \u2013 Busy", GIVE_UP))
        self.assertIn("could not be reached", self.close_box(LOGIN_FAILED))


if __name__ == "__main__":
    unittest.main()
