"""The way of a request in a run that a host started: orders of calls, answers, and everything that can fail."""
import unittest

import stage
from stage import ADD_IN, CLOCK_READ, EXCHANGE, LOGIN_FAILED, LOOKUP, UPDATE, WAIT_BOX, EndToEndTest, Host, dialog_title
from stage import open_stage as setUpModule  # noqa: F401

REQUEST = "PBX clock request: "
ACCEPTED = [f'"{REQUEST}L1"', f'"{REQUEST}R1"']
GOOD = ["oPBX", "Login", "ShowMessage", "oPBX", "SendRequest", "ShowMessage",
        "ShowResults", "ShowMessage", "ShowCode", "oPBX", "LogOut"]
REFUSED_SEND = ["oPBX", "Login", "ShowMessage", "oPBX", "SendRequest", "ShowMessage", "oPBX", "LogOut"]
REFUSED_LOGIN = ["oPBX", "Login", "ShowMessage"]


class GoodExchange(EndToEndTest):
    def test_order_of_calls(self):
        host = Host(self).open()
        self.look_up()
        self.assertEqual(host.calls(), GOOD)
        self.assertEqual(host.told(), ACCEPTED + ['"OK"', "0"])
        self.assertIn('Login("Main Office", <object>) -> "L1"', host.lines())
        self.assertIn(f'ShowResults("{dialog_title()}", <object>) -> Nothing', host.lines())
        self.assertIn('LogOut("Main Office", "L1") -> Nothing', host.lines())
        self.assertEqual(host.lines()[-1], "# CallBack returned")

    def test_update_sets_the_clock_that_a_lookup_shows(self):
        host = Host(self, "--offset", "600").open()
        before = self.look_up()
        self.press(UPDATE)
        self.assertEqual(self.close_box("PBX Clock"), "The date and time of the PBX have been updated.")
        held = [stage.driver.value(stage.driver.find(ADD_IN, name)) for name in ("Hour", "Minute")]
        after = self.look_up()
        self.assertNotEqual(before[-8:-3], after[-8:-3])
        hours, minutes = int(after[-8:-6]), int(after[-5:-3])
        behind = (hours * 60 + minutes - int(held[0]) % 12 * 60 - int(held[1])) % 720
        self.assertLessEqual(behind, 1)
        self.assertEqual(host.calls(), GOOD * 3)

    def test_second_press_within_the_tick_sends_no_second_request(self):
        host = Host(self).open()
        stage.driver.click_twice(stage.driver.find(ADD_IN, LOOKUP, "push button"))
        self.close_box(CLOCK_READ)
        self.assert_usable()
        self.assertEqual(host.calls(), GOOD * 2)

    def test_close_button_hides_the_dialog_and_keeps_it(self):
        host = Host(self).open()
        self.press("Close this window")
        self.wait_for(lambda: dialog_title() not in stage.driver.titles(ADD_IN), "the dialog to hide")
        stage.driver.click(stage.driver.find("switchdesk", "Open clock add-in"))
        self.dialog()
        self.assert_usable()
        self.assertFalse(any(line.startswith("UnloadChild") for line in host.lines()))


# Options of the host, what it is told of the request, the calls that it gets, and the title of the operator's
# box, if there is one.
FAILURES = [
    ("login raises", ["--login=raise"], [f'"{REQUEST}"'], REFUSED_LOGIN, LOGIN_FAILED),
    ("login missing", ["--lack=Login"], [f'"{REQUEST}"'], REFUSED_LOGIN, LOGIN_FAILED),
    ("login of a wrong type", ["--wrong-type=Login"], [f'"{REQUEST}"'], REFUSED_LOGIN, LOGIN_FAILED),
    ("login BUSY", ["--login=BUSY"], [f'"{REQUEST}BUSY"'], REFUSED_LOGIN, None),
    ("login ERROR", ["--login=ERROR"], [f'"{REQUEST}ERROR"'], REFUSED_LOGIN, None),
    ("login empty", ["--login=empty"], [f'"{REQUEST}"'], REFUSED_LOGIN, None),
    ("send raises", ["--send=raise"], [ACCEPTED[0], f'"{REQUEST}"'], REFUSED_SEND, None),
    ("send missing", ["--lack=SendRequest"], [ACCEPTED[0], f'"{REQUEST}"'], REFUSED_SEND, None),
    ("send BUSY", ["--send=BUSY"], [ACCEPTED[0], f'"{REQUEST}BUSY"'], REFUSED_SEND, None),
    ("send ERROR", ["--send=ERROR"], [ACCEPTED[0], f'"{REQUEST}ERROR"'], REFUSED_SEND, None),
    ("send empty", ["--send=empty"], [ACCEPTED[0], f'"{REQUEST}"'], REFUSED_SEND, None),
    ("message about the login fails", ["--raise=ShowMessage"], [ACCEPTED[0], f'"{REQUEST}"'], REFUSED_SEND, None),
    ("log out fails behind a refused send", ["--send=BUSY", "--raise=LogOut"],
     [ACCEPTED[0], f'"{REQUEST}BUSY"'], REFUSED_SEND, None),
    ("ErrCode 7", ["--errcode=7"], ACCEPTED + ['"The PBX clock request failed : <7>"', "7"], GOOD, None),
    ("ErrCode 7 with a message", ["--errcode=7", "--message=Line down"],
     ACCEPTED + ['"The PBX clock request failed : <7>"', "7"], GOOD, None),
    ("ErrCode 99", ["--errcode=99"], ACCEPTED + ['""', "99"], GOOD, None),
    ("ErrCode 99 with a message", ["--errcode=99", "--message=Line down"],
     ACCEPTED + ['"Line down"', "99"], GOOD, None),
    ("Count missing", ["--lack=Count"], ACCEPTED + ['"OK"', "0"], GOOD, None),
    ("an item's member missing", ["--lack=SecondData"], ACCEPTED + ['"OK"', "0"], GOOD, None),
    ("an item's member fails", ["--raise=ExtraData"], ACCEPTED + ['"OK"', "0"], GOOD, None),
    ("ErrCode missing", ["--lack=ErrCode"], ACCEPTED + ['""'], [call for call in GOOD if call != "ShowCode"], None),
    ("Tag missing", ["--lack=Tag"], ACCEPTED + ['"OK"', "0"], GOOD, None),
    ("Tag of another request", ["--tag=LOOKUP_CLOCKS"], ACCEPTED + ['"OK"', "0"], GOOD, None),
    ("Message missing", ["--lack=Message"], ACCEPTED + ["0"], GOOD[:7] + GOOD[8:], CLOCK_READ),
    ("LoginID missing", ["--lack=LoginID"], ACCEPTED + ['"OK"', "0"], GOOD, CLOCK_READ),
    ("results can't be shown", ["--lack=ShowResults"], ACCEPTED + ['"OK"', "0"], GOOD, CLOCK_READ),
    ("code can't be shown", ["--raise=ShowCode"], ACCEPTED + ['"OK"', "0"], GOOD, CLOCK_READ),
    ("log out fails", ["--raise=LogOut"], ACCEPTED + ['"OK"', "0"], GOOD, CLOCK_READ),
    ("message with success", ["--message=Done"], ACCEPTED + ['"Done"', "0"], GOOD, CLOCK_READ),
    ("a missing time", ["--drop-item=2"], ACCEPTED + ['"OK"', "0"], GOOD, CLOCK_READ),
    ("a missing year", ["--drop-item=0"], ACCEPTED + ['"OK"', "0"], GOOD, "Reading Failed"),
    ("an answer text for a value", ["--item=1:SecondData=DATA ERROR"], ACCEPTED + ['"OK"', "0"], GOOD,
     "Reading Failed"),
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
                self.assert_next_exchange_succeeds(host, lost_login=not {"--raise=LogOut", "--wrong-type=Login"}.isdisjoint(options))

    def assert_next_exchange_succeeds(self, host, lost_login):
        """A host that thinks the login open holds its exchange busy."""
        host.skip()
        if lost_login:
            self.press(LOOKUP)
            host.wait_for_line("ShowMessage(")
            self.assertEqual(host.told(), [f'"{REQUEST}BUSY"'])
            return
        self.assert_usable()
        self.assertEqual(host.calls(), GOOD)

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

    def test_nearly_a_refusal_is_a_key(self):
        for key in ("Busy", "error", " "):
            with self.case(key):
                host = Host(self, f"--login={key}").open()
                self.assert_usable()
                self.assertEqual(host.told()[0], f'"{REQUEST}{key}"')
                self.assertEqual(host.lines().count(f'LogOut("{EXCHANGE}", "{key}") -> Nothing'), 1)

    def test_update_that_the_exchange_refuses(self):
        for text, shown in (("DATA ERROR", "DATA ERROR"), ("LNK_TIMEOUT", "(no valid answer from the PBX)"),
                            ("gibberish", "(no valid answer from the PBX)")):
            with self.case(text):
                Host(self, f"--item=2:ExtraData={text}").open()
                self.press(UPDATE)
                box = self.close_box("Update Failed")
                self.assertRegex(box, r"\nCM = 02, FD = 2, SD = \d{6} " + shown.replace("(", r"\(").replace(")", r"\)"))
                self.assertNotIn("FD = 1", box)
                self.wait_until_enabled()


class Timing(EndToEndTest):
    def test_second_answer_to_one_request_is_shown_once(self):
        host = Host(self, "--answer=twice", "--logins=1").open()
        self.press(LOOKUP)
        host.wait_for_line("# CallBack returned", 2)
        self.close_box(CLOCK_READ)
        self.assert_usable()
        self.assertEqual(host.lines().count('LogOut("Main Office", "L1") -> Nothing'), 2)

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
