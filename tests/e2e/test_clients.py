"""The hosts that come with the add-in: the companion, and the examples, which share no code with it."""
import os
import re
import signal
import subprocess
import sys
from datetime import date

from end_to_end import BUILD, Host, run
from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from arrangement import SOURCES
from driver import Role
from stage import ADD_IN, LIMIT, LOOKUP, SWITCHDESK, UPDATE, EndToEndTest, dialog_title, pids

EXAMPLES = [(sys.executable, SOURCES / "examples/host.py"), (BUILD / "examples/example-host",),
            (sys.executable, SOURCES / "examples/minimal_host.py")]


class Companion(EndToEndTest):
    def test_the_trace_says_what_was_passed_over_and_why_an_answer_was_judged_so(self):
        Host(self, "--trace", "--item=0:SecondData=MMXXVI", "--lack=ShowCode").open()
        self.press(LOOKUP)
        self.close_box("Reading Failed")
        log = (stage.arrangement.folder / "bus.log").read_text(encoding="utf-8")
        self.assertEqual(re.findall(r"^horalink: ([^,\n]*)", log, re.M), [
            "ShowCode skipped: error 438", 'item 0: SecondData "MMXXVI" and item 1: SecondData '
            f'"{date.today():%m/%d}" aren\'t a date: reading failed'])

    def test_the_login_of_an_add_in_that_dies_is_given_back(self):
        host = Host(self, "--answer=never", "--logins=1").open()
        self.press(LOOKUP)
        host.wait_for_line('ShowMessage("PBX clock request: R1"')
        os.kill(*pids(ADD_IN), signal.SIGKILL)
        host.wait_for_line("# add-in has left")
        stage.driver.click(stage.driver.find(SWITCHDESK, "Open clock add-in", Role.PUSH_BUTTON))
        self.press(LOOKUP)
        host.wait_for_line('Login("Main Office", <object>) -> "L2"')

    def test_an_answer_under_way_is_asked_about_before_another_exchange_opens(self):
        def open_exchange(window, name, answer=None):
            window = f"Switchdesk \u2013 {window}"
            stage.driver.raise_window(window)
            stage.driver.click(stage.driver.find(SWITCHDESK, name, Role.TABLE_CELL, window=window))
            stage.driver.click(stage.driver.find(SWITCHDESK, "Open clock add-in", Role.PUSH_BUTTON))
            if answer:
                stage.driver.click(stage.driver.find(SWITCHDESK, answer, Role.PUSH_BUTTON))
        host = Host(self, "--answer=late:10000", "--logins=1").open()
        self.press(LOOKUP)
        host.wait_for_line('ShowMessage("PBX clock request: R1"')
        open_exchange("Main Office", "Branch 3", "Open Branch 3")
        open_exchange("Branch 3", "Warehouse", "Wait")
        self.close_box("PBX Clock")
        host.wait_for_line('LogOut("Branch 3", "L1")')
        messages = stage.driver.value(stage.driver.find(SWITCHDESK, "Messages", Role.TEXT))
        self.assertRegex(messages, r"Main Office: clock read$")
        opened = [line for line in host.lines() if line.startswith("# RegisterPBX")]
        self.assertEqual(opened, [f'# RegisterPBX("{name}") returned False' for name in ("Main Office", "Branch 3")])
        open_exchange("Branch 3", "Main Office")
        self.assert_usable()

    def test_closes_at_once_though_the_add_in_is_frozen(self):
        for buttons in (["Open clock add-in"], ["Close add-in", "Open clock add-in"]):
            with self.case(buttons):
                Host(self).open()
                add_in, *_ = pids(ADD_IN)
                os.kill(add_in, signal.SIGSTOP)
                stage.driver.raise_window("Switchdesk \u2013 Main Office")
                for button in buttons:
                    stage.driver.click(stage.driver.find(SWITCHDESK, button, Role.PUSH_BUTTON))
                    self.wait_for(lambda pressed=button: not stage.driver.is_enabled(
                        stage.driver.find(SWITCHDESK, pressed, Role.PUSH_BUTTON)), "the button to be disabled")
                stage.driver.press("alt+F4")
                self.wait_until_gone(SWITCHDESK)
                self.assertEqual(pids(ADD_IN), [add_in])
                os.kill(add_in, signal.SIGKILL)

    def test_last_of_two_hosts_ends_the_process(self):
        first, second = Host(self).open(), Host(self, exchange="Warehouse").open()
        self.assertEqual(len(pids(ADD_IN)), 1)
        stage.driver.raise_window(dialog_title("Warehouse"))
        self.look_up()
        first.close_add_in()
        first.wait_for_line("# lets go of the add-in")
        stage.driver.raise_window(dialog_title("Warehouse"))
        self.assert_usable()
        second.close_add_in()
        second.wait_for_line("# add-in has left")
        self.wait_until_gone()
        calls = [[line for line in host.lines() if line.startswith(("Login(", "REG"))] for host in (first, second)]
        self.assertEqual((calls[0], len(calls[1])), ([], 3))
        self.assertEqual(calls[1][0], 'Login("Warehouse", <object>) -> "L1"')
        self.assertRegex(calls[1][2], r'^REGComData\("Horalink", "MOVE", "-?[\d.]+,-?[\d.]+"\) -> Nothing$')


class Examples(EndToEndTest):
    def test_lookup_update_the_end_of_the_window_and_no_add_in(self):
        for command in EXAMPLES:
            with self.case(command[-1].name):
                process = self.start(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
                self.assert_usable()
                self.press(UPDATE)
                self.assertEqual(self.close_box("Update Failed").count("CODE NOT ALLOWED"), 3)
                stage.driver.raise_window(dialog_title("Example"))
                stage.driver.press("alt+F4")
                printed, _ = process.communicate(timeout=LIMIT)
                self.assertEqual(process.returncode, 0, printed)
                # The least one prints the messages alone.
                shown = re.findall(r'^(?:ShowMessage\(")?(PBX clock request: \w+|OK)\b', printed, re.M)
                self.assertEqual(shown, 2 * ["PBX clock request: KEY", "PBX clock request: ACCEPTED", "OK"])
                self.wait_until_gone()
                stage.arrangement.add_in.unlink()
                self.assertRegex(run(command).stderr, r"^[^\n]*(429|CreateInstance)[^\n]*\n$")
