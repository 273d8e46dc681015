"""The way of a request in a run that a host started: orders of calls, answers, and everything that can fail."""
import re
import unittest

from end_to_end import Host
from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from stage import ADD_IN, CLOCK_READ, GOOD, LOGIN_FAILED, LOOKUP, UPDATE, WAIT_BOX, EndToEndTest, dialog_title

REQUEST = "PBX clock request: "
ACCEPTED = [f'"{REQUEST}L1"', f'"{REQUEST}R1"']
GOOD_END = [ACCEPTED[1], '"OK"', "0"]
ALL_GOOD = [ACCEPTED[0], *GOOD_END]
FAILED = ['"The PBX clock request failed : <7>"', "7"]
REFUSED_SEND = ["oPBX", "Login", "ShowMessage", "oPBX", "SendRequest", "ShowMessage", "oPBX", "LogOut"]
REFUSED_LOGIN = ["oPBX", "Login", "ShowMessage"]


class GoodExchange(EndToEndTest):
    def test_order_of_calls(self):
        host = Host(self).open()
        self.look_up()
        self.assertEqual(host.calls(), GOOD)
        self.assertEqual(host.told(), ALL_GOOD)
        self.assertIn('Login("Main Office", <object>) -> "L1"', host.lines())
        self.assertIn(f'ShowResults("{dialog_title()}", <object>) -> Nothing', host.lines())
        self.assertIn('LogOut("Main Office", "L1") -> Nothing', host.lines())
        self.assertEqual(host.lines()[-1], "# CallBack returned")

    def test_update_sets_the_clock_that_a_lookup_shows(self):
        host = Host(self, "--offset", "600").open()
        before = self.look_up()
        self.press(UPDATE)
        self.assertEqual(self.close_box("PBX Clock"), "The date and time of the PBX have been updated.")
        hour, minute = [int(stage.driver.value(stage.driver.find(ADD_IN, name))) for name in ("Hour", "Minute")]
        after = self.look_up()
        self.assertNotEqual(before[-8:-3], after[-8:-3])
        self.assertLessEqual((int(after[-8:-6]) * 60 + int(after[-5:-3]) - hour * 60 - minute) % 720, 1)
        self.assertEqual(host.calls(), GOOD * 3)

    def test_second_press_within_the_tick_sends_no_second_request(self):
        host = Host(self).open()
        stage.driver.click_twice(stage.driver.find(ADD_IN, LOOKUP, "push button"))
        self.close_box(CLOCK_READ)
        self.assert_usable()
        self.assertEqual(host.calls(), GOOD * 2)


# Options of the host, what it is told of the request, the calls that it gets, and the title of the operator's
# box, if there is one.
FAILURES = [
    ("login raises", ["--login=raise"], [f'"{REQUEST}"'], REFUSED_LOGIN, LOGIN_FAILED),
    ("login missing", ["--lack=Login"], [f'"{REQUEST}"'], REFUSED_LOGIN, LOGIN_FAILED),
    ("login of a wrong type", ["--wrong-type=Login"], [f'"{REQUEST}"'], REFUSED_LOGIN, LOGIN_FAILED),
    ("login BUSY", ["--login=BUSY"], [f'"{REQUEST}BUSY"'], REFUSED_LOGIN, None),
    ("login ERROR", ["--login=ERROR"], [f'"{REQUEST}ERROR"'], REFUSED_LOGIN, None),
    ("login empty", ["--login=empty"], [f'"{REQUEST}"'], REFUSED_LOGIN, None),
    # Nearly a refusal is a key.
    ("login Busy", ["--login=Busy"], [f'"{REQUEST}Busy"', *GOOD_END], GOOD, CLOCK_READ),
    ("login error", ["--login=error"], [f'"{REQUEST}error"', *GOOD_END], GOOD, CLOCK_READ),
    ("login of a blank", ["--login= "], [f'"{REQUEST} "', *GOOD_END], GOOD, CLOCK_READ),
    ("send raises", ["--send=raise"], [ACCEPTED[0], f'"{REQUEST}"'], REFUSED_SEND, None),
    ("send missing", ["--lack=SendRequest"], [ACCEPTED[0], f'"{REQUEST}"'], REFUSED_SEND, None),
    ("send BUSY", ["--send=BUSY"], [ACCEPTED[0], f'"{REQUEST}BUSY"'], REFUSED_SEND, None),
    ("send ERROR", ["--send=ERROR"], [ACCEPTED[0], f'"{REQUEST}ERROR"'], REFUSED_SEND, None),
    ("send empty", ["--send=empty"], [ACCEPTED[0], f'"{REQUEST}"'], REFUSED_SEND, None),
    ("message about the login fails", ["--raise=ShowMessage"], [ACCEPTED[0], f'"{REQUEST}"'], REFUSED_SEND, None),
    ("log out fails behind a refused send", ["--send=BUSY", "--raise=LogOut"],
     [ACCEPTED[0], f'"{REQUEST}BUSY"'], REFUSED_SEND, None),
    ("ErrCode 7", ["--errcode=7"], [*ACCEPTED, *FAILED], GOOD, None),
    ("ErrCode 7 with a message", ["--errcode=7", "--message=Line down"], [*ACCEPTED, *FAILED], GOOD, None),
    ("ErrCode 99", ["--errcode=99"], ACCEPTED + ['""', "99"], GOOD, None),
    ("ErrCode 99 with a message", ["--errcode=99", "--message=Line down"], ACCEPTED + ['"Line down"', "99"], GOOD, None),
    ("Count missing", ["--lack=Count"], ALL_GOOD, GOOD, None),
    ("an item's member missing", ["--lack=SecondData"], ALL_GOOD, GOOD, None),
    ("an item's member fails", ["--raise=ExtraData"], ALL_GOOD, GOOD, None),
    ("ErrCode missing", ["--lack=ErrCode"], ACCEPTED + ['""'], [call for call in GOOD if call != "ShowCode"], None),
    ("Tag missing", ["--lack=Tag"], ALL_GOOD, GOOD, None),
    ("Tag of another request", ["--tag=LOOKUP_CLOCKS"], ALL_GOOD, GOOD, None),
    ("Message missing", ["--lack=Message"], ACCEPTED + ["0"], GOOD[:7] + GOOD[8:], CLOCK_READ),
    ("LoginID missing", ["--lack=LoginID"], ALL_GOOD, GOOD, CLOCK_READ),
    ("results can't be shown", ["--lack=ShowResults"], ALL_GOOD, GOOD, CLOCK_READ),
    ("code can't be shown", ["--raise=ShowCode"], ALL_GOOD, GOOD, CLOCK_READ),
    ("log out fails", ["--raise=LogOut"], ALL_GOOD, GOOD, CLOCK_READ),
    ("message with success", ["--message=Done"], ACCEPTED + ['"Done"', "0"], GOOD, CLOCK_READ),
    ("a missing time", ["--drop-item=2"], ALL_GOOD, GOOD, CLOCK_READ),
    ("a missing year", ["--drop-item=0"], ALL_GOOD, GOOD, "Reading Failed"),
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
                if {"--raise=LogOut", "--wrong-type=Login"}.isdisjoint(options):
                    self.assert_usable()
                    self.assertEqual(host.calls(), GOOD)
                    continue
                # A host that thinks the login open holds its exchange busy.
                self.press(LOOKUP)
                host.wait_for_line("ShowMessage(")
                self.assertEqual(host.told(), [f'"{REQUEST}BUSY"'])

    def test_without_an_exchange_object(self):
        for option in ("--lack=oPBX", "--raise=oPBX", "--wrong-type=oPBX"):
            with self.case(option):
                host = Host(self, option).open()
                for _ in range(2):
                    self.press(LOOKUP)
                    self.assertIn("could not be reached", self.close_box(LOGIN_FAILED))
                    self.wait_until_enabled()
                self.assertEqual(host.calls(), ["oPBX", "ShowMessage"] * 2)
                self.assertEqual(host.told(), [f'"{REQUEST}"'] * 2)

    def test_update_that_the_exchange_refuses(self):
        for text, shown in (("DATA ERROR", "DATA ERROR"), ("LNK_TIMEOUT", "(no valid answer from the PBX)")):
            with self.case(text):
                Host(self, f"--item=2:ExtraData={text}").open()
                self.press(UPDATE)
                box = self.close_box("Update Failed")
                self.assertRegex(box, rf"\nCM = 02, FD = 2, SD = \d{{6}} {re.escape(shown)}")
                self.assertNotIn("FD = 1", box)
                self.wait_until_enabled()


class Timing(EndToEndTest):
    def test_host_that_stays_busy(self):
        Host(self, "--busy=60").open()
        self.press(LOOKUP)
        self.assertIn("is busy", self.close_box("Horalink \u2013 Busy", "Cancel"))
        self.assertIn("could not be reached", self.close_box(LOGIN_FAILED))

    def test_call_back_from_inside_login(self):
        host = Host(self, "--callback-during=login", "--logins=1").open()
        self.press(LOOKUP)
        host.wait_for_line("ShowMessage(", 3)
        self.wait_until_enabled()
        # The answer ended the login; the request that follows it is refused.
        self.assertEqual(host.calls()[:6], ["oPBX", "ShowResults", "ShowMessage", "ShowCode", "oPBX", "LogOut"])
        self.assertEqual(host.told(), ['"OK"', "0", f'"{REQUEST}L1"', f'"{REQUEST}ERROR"'])
        self.assert_usable()

    def test_call_back_from_inside_the_send(self):
        """The answer is shown; the request taken behind it waits for another one until it is given up."""
        host = Host(self, "--callback-during=send", "--logins=1").open()
        self.press(LOOKUP)
        self.close_box(CLOCK_READ)
        self.assertIn("# SendRequest(<object>) is under way", host.lines())
        self.close_box(WAIT_BOX, "Cancel")
        self.assert_usable()


if __name__ == "__main__":
    unittest.main()
