"""The hosts that come with the add-in: the companion, and the examples, which share no code with it."""
import os
import re
import signal
import subprocess
import sys
from datetime import date

import testbed
from driver import Role
from sandbox import SOURCES
from testbed import ADD_IN, BUILD, LIMIT, LOOKUP, SWITCHDESK, UPDATE, EndToEndTest, Host, dialog_title, pids, run
from testbed import set_up as setUpModule  # noqa: F401

EXAMPLES = [(sys.executable, SOURCES / "examples/host.py"), (BUILD / "examples/example-host",),
            (sys.executable, SOURCES / "examples/minimal_host.py")]
OPEN, CLOSE = "Open clock add-in", "Close add-in"


class Companion(EndToEndTest):
    def test_what_was_passed_over_is_traced_and_the_login_of_one_that_dies_is_given_back(self):
        host = Host(self, "--trace", "--item=0:SecondData=MMXXVI", "--lack=ShowCode").open()
        self.press(LOOKUP)
        self.close_box("Reading Failed")
        log = (testbed.sandbox.folder / "bus.log").read_text(encoding="utf-8")
        self.assertEqual(re.findall(r"^horalink: ([^,\n]*)", log, re.M), [
            "ShowCode skipped: error 438", 'item 0: SecondData "MMXXVI" and item 1: SecondData '
            f'"{date.today():%m/%d}" aren\'t a date: reading failed'])
        host.wait_for_line("LogOut")
        os.kill(pids(SWITCHDESK)[0], signal.SIGKILL)
        self.wait_until_gone()
        host = Host(self, "--answer=never", "--logins=1").open()
        self.press(LOOKUP)
        host.wait_for_line('ShowMessage("PBX clock request: R1"')
        os.kill(*pids(ADD_IN), signal.SIGKILL)
        host.wait_for_line("# add-in has left")
        self.press(OPEN, SWITCHDESK)
        self.press(LOOKUP)
        host.wait_for_line('Login("Main Office", <object>) -> "L2"')

    def test_an_answer_under_way_is_asked_about_before_another_exchange_opens(self):
        def open_exchange(window, name, answer=None):
            window = f"Switchdesk \u2013 {window}"
            testbed.driver.raise_window(window)
            testbed.driver.click(testbed.driver.find(SWITCHDESK, name, Role.TABLE_CELL, window=window))
            for button in filter(None, (OPEN, answer)):
                self.press(button, SWITCHDESK)
        host = Host(self, "--answer=late:10000", "--logins=1").open()
        self.press(LOOKUP)
        host.wait_for_line('ShowMessage("PBX clock request: R1"')
        open_exchange("Main Office", "Branch 3", "Open Branch 3")
        open_exchange("Branch 3", "Warehouse", "Wait")
        self.close_box("PBX Clock")
        host.wait_for_line('LogOut("Branch 3", "L1")')
        messages = testbed.driver.value(testbed.driver.find(SWITCHDESK, "Messages", Role.TEXT))
        self.assertRegex(messages, r"Main Office: clock read$")
        self.assertEqual(host.lines("# RegisterPBX"),
                         [f'# RegisterPBX("{name}") returned False' for name in ("Main Office", "Branch 3")])
        open_exchange("Branch 3", "Main Office")
        self.assert_usable()

    def test_closes_at_once_though_the_add_in_is_frozen(self):
        for buttons in ([OPEN], [CLOSE, OPEN]):
            with self.case(buttons):
                host = Host(self).open()
                add_in, *_ = pids(ADD_IN)
                os.kill(add_in, signal.SIGSTOP)
                testbed.driver.raise_window(host.window)
                for button in buttons:
                    self.press(button, SWITCHDESK)
                    self.wait_for(lambda pressed=button: not self.is_enabled(pressed, SWITCHDESK), f"'{button}' to be disabled")
                testbed.driver.press("alt+F4")
                self.wait_until_gone(SWITCHDESK)
                self.assertEqual(pids(ADD_IN), [add_in])
                os.kill(add_in, signal.SIGKILL)


class Examples(EndToEndTest):
    def test_lookup_update_the_end_of_the_window_and_no_add_in(self):
        for command in EXAMPLES:
            with self.case(command[-1].name):
                process = self.start(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
                self.assert_usable()
                self.press(UPDATE)
                self.assertEqual(self.close_box("Update Failed").count("CODE NOT ALLOWED"), 3)
                testbed.driver.raise_window(dialog_title("Example"))
                testbed.driver.press("alt+F4")
                printed, _ = process.communicate(timeout=LIMIT)
                self.assertEqual(process.returncode, 0, printed)
                # The least one prints the messages alone.
                shown = re.findall(r'^(?:ShowMessage\(")?(PBX clock request: \w+|OK)\b', printed, re.M)
                self.assertEqual(shown, 2 * ["PBX clock request: KEY", "PBX clock request: ACCEPTED", "OK"])
                self.wait_until_gone()
                testbed.sandbox.add_in.unlink()
                self.assertRegex(run(command).stderr, r"^[^\n]*(429|CreateInstance)[^\n]*\n$")
