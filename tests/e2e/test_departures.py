"""Hosts that die with a request under way, and objects that come and go."""
import os
import signal
import unittest

from end_to_end import Host
from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from client import Client
from driver import Role
from stage import ADD_IN, CLOCK_READ, LOGIN_FAILED, LOOKUP, SWITCHDESK, EndToEndTest, dialog_title, pids


def calling(line):
    """A request, up to a line of the host's log."""
    def bring(test, host):
        test.press(LOOKUP)
        host.wait_for_line(line)
    return bring


def idle(_test, _host):
    pass


def showing(test, _host):
    test.press(LOOKUP)
    test.box_text(CLOCK_READ)


# The host's options, what brings it to where it is killed or kills itself, and the box that the operator sees in
# the end, where the dialog lives on.
STATES = [
    ("idle", [], idle, None),
    ("logging in", ["--login=hang"], calling("# hangs"), LOGIN_FAILED),
    ("waiting", ["--answer=never"], calling('ShowMessage("PBX clock request: R1"'), None),
    ("reading the answer", ["--leave=callback"], calling("# leaves the bus"), None),
    ("the box is open", [], showing, CLOCK_READ),
]


class DyingHosts(EndToEndTest):
    def die(self, options, bring):
        host = Host(self, *options).open()
        bring(self, host)
        host.kill()

    def test_the_add_in_goes_with_its_last_client(self):
        for state, options, bring, _ in STATES:
            with self.case(state):
                self.die(options, bring)
                self.wait_until_gone()

    def test_the_dialog_is_usable_for_who_remains(self):
        for state, options, bring, box in STATES:
            with self.case(state):
                Client(self).created()
                self.die(options, bring)
                (process,) = pids(ADD_IN)
                if box:
                    self.close_box(box)
                Host(self).open()
                stage.driver.raise_window(dialog_title())
                self.assert_usable()
                self.assertEqual(pids(ADD_IN), [process])


class DyingAddIn(EndToEndTest):
    def test_its_login_is_given_back(self):
        host = Host(self, "--answer=never", "--logins=1").open()
        self.press(LOOKUP)
        host.wait_for_line('ShowMessage("PBX clock request: R1"')
        os.kill(*pids(ADD_IN), signal.SIGKILL)
        host.wait_for_line("# add-in has left")
        stage.driver.click(stage.driver.find(SWITCHDESK, "Open clock add-in", Role.PUSH_BUTTON))
        self.dialog()
        self.assert_usable()


class SharedDialog(EndToEndTest):
    def test_last_of_two_hosts_ends_the_process(self):
        first = Host(self).open()
        second = Host(self, exchange="Warehouse").open()
        self.assertEqual(len(pids(ADD_IN)), 1)
        stage.driver.raise_window(dialog_title("Warehouse"))
        self.look_up()
        self.assertIn('Login("Warehouse", <object>) -> "L1"', second.lines())
        self.assertEqual(first.exchange_lines(), [])
        first.close_add_in()
        first.wait_for_line("# lets go of the add-in")
        stage.driver.raise_window(dialog_title("Warehouse"))
        self.assert_usable()
        second.close_add_in()
        second.wait_for_line("# add-in has left")
        self.wait_until_gone()
        self.assertFalse(any(line.startswith("REGComData") for line in first.lines()))
        saved = [line for line in second.lines() if line.startswith("REGComData")]
        self.assertRegex(saved[0], r'^REGComData\("Horalink", "MOVE", "-?[\d.]+,-?[\d.]+"\) -> Nothing$')
        self.assertEqual(len(saved), 1)


if __name__ == "__main__":
    unittest.main()
