"""The add-in as a plain program, which creates the host's exchange object by the name of its class."""
import subprocess
import unittest

from end_to_end import Host
from end_to_end import open_stage as setUpModule  # noqa: F401
from end_to_end import run

import stage
from stage import (ADD_IN, CLOCK_READ, CLOSE, EXCHANGE, LOGIN_FAILED, LOOKUP, SWITCHDESK, UPDATE, WAIT_BOX,
                   EndToEndTest, dialog_title, pids)

GOOD = ["Login", "SendRequest", "LogOut"]


class StandAloneTest(EndToEndTest):
    def serve(self, *options):
        """A host with a window that serves the class, and that misbehaves as told."""
        host = Host(self, *options, exchange=None)
        self.wait_for(lambda: stage.bus.name_has_owner(stage.EXCHANGE_CLASS), stage.EXCHANGE_CLASS)
        return host

    def start_add_in(self, exchange=EXCHANGE):
        self.add_in = self.start([stage.arrangement.add_in, exchange], stderr=subprocess.PIPE, text=True)
        stage.driver.window(ADD_IN)

    def begin_on(self, *options):
        host = self.serve(*options)
        self.start_add_in()
        host.wait_for_line("ConnectToPbx")
        host.skip()
        return host

    def close(self):
        """Closes the dialog, and with it the program."""
        self.press(CLOSE)
        self.assert_good_end()

    def assert_good_end(self):
        self.wait_for(lambda: self.add_in.poll() is not None, "the add-in to end")
        # What the toolkit says of a widget that went while an assistive program looked at it is not ours.
        said = [line for line in self.add_in.stderr if not line.startswith("qt.accessibility")]
        self.assertEqual((self.add_in.returncode, said), (0, []))


class Runs(StandAloneTest):
    def test_lookup_and_update_with_a_service_of_the_bus(self):
        self.start_add_in()
        self.assertEqual(len(pids(SWITCHDESK)), 1)
        self.assertRegex(self.look_up(), r"^The clock of the PBX shows:\s+\d{4}/\d\d/\d\d \(\w{3}\)\s+\d\d:\d\d:\d\d$")
        self.press(UPDATE)
        self.assertEqual(self.close_box(CLOCK_READ), "The date and time of the PBX have been updated.")
        self.assert_usable()
        stage.driver.raise_window(dialog_title())
        stage.driver.press("alt+F4")
        self.assert_good_end()
        self.wait_until_gone(SWITCHDESK)

    def test_order_of_calls(self):
        host = self.serve()
        self.start_add_in()
        self.look_up()
        self.close()
        self.assertEqual(host.calls(), GOOD + ["LogOut"])
        ends = [line for line in host.lines() if line.startswith(("ConnectToPbx", "LogOut"))]
        self.assertEqual(ends, [f'ConnectToPbx("{EXCHANGE}", <object>) -> "C1"',
                                f'LogOut("{EXCHANGE}", "L1") -> Nothing', f'LogOut("{EXCHANGE}", "C1") -> Nothing'])

    def test_empty_command_line_ends_at_once(self):
        done = run([stage.arrangement.add_in])
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_dialog_without_a_connection(self):
        """The exchange is unknown, refuses, or there is no host at all: only the close button is left."""
        for name, exchange, prepare in (
                ("blanks", "  ", self.serve),
                ("unknown exchange", "Attic", self.serve),
                ("connecting fails", EXCHANGE, lambda: self.serve("--raise=ConnectToPbx")),
                ("host dies while connecting", EXCHANGE, lambda: self.serve("--leave=connect")),
                ("no host", EXCHANGE, lambda: stage.arrangement.host.unlink())):
            with self.case(name):
                prepare()
                self.start_add_in(exchange)
                self.assertEqual([self.is_enabled(button) for button in (LOOKUP, UPDATE, CLOSE)], [False, False, True])
                self.assertEqual(stage.driver.titles(ADD_IN), ["PBX Clock" if name == "no host" else dialog_title(exchange)])
                self.close()


# The host's options, the calls that it gets, and the operator's box.
FAILURES = [
    ("login raises", ["--login=raise"], ["Login"], LOGIN_FAILED),
    ("login BUSY", ["--login=BUSY"], ["Login"], None),
    ("send raises", ["--send=raise"], GOOD, None),
    ("ErrCode 7", ["--errcode=7"], GOOD, None),
]


class Failures(StandAloneTest):
    def test_what_is_called_and_shown(self):
        for name, options, calls, box in FAILURES:
            with self.case(name):
                host = self.begin_on("--logins=1", *options)
                self.press(LOOKUP)
                host.wait_for_line(calls[-1] + "(")
                if box:
                    self.assertIn("could not be reached", self.close_box(box))
                if "--errcode" in options[0]:
                    host.wait_for_line("# CallBack returned")
                self.assertEqual(host.calls(), calls)
                host.skip()
                self.assert_usable()
                self.assertEqual(host.calls(), GOOD)
                self.close()

    def test_answer_that_never_comes(self):
        host = self.begin_on("--logins=1", "--answer=never")
        self.press(LOOKUP)
        host.wait_for_line("SendRequest(")
        stage.driver.click(stage.driver.find(ADD_IN, UPDATE, "push button"))
        for button in ("Retry", "Cancel"):
            self.assertIn("has not answered yet", self.close_box(WAIT_BOX, button))
        host.wait_for_line(f'LogOut("{EXCHANGE}", "L1")')
        # The click on the disabled dialog came to nothing.
        self.assertEqual(host.calls(), GOOD)
        self.assert_usable()
        self.close()

    def test_host_that_leaves_while_its_answer_is_out(self):
        for name, options, box in (("send", ["--leave=send"], None), ("answer", ["--leave=waiting"], None),
                                   ("log out", ["--leave=logout"], CLOCK_READ)):
            with self.case(name):
                host = self.begin_on(*options)
                self.press(LOOKUP)
                host.wait_for_line("# leaves the bus")
                if box:
                    self.close_box(box)
                host.process.wait(stage.LIMIT)
                # Whoever would be created now is another one than the dialog knows.
                self.press_until_box(LOGIN_FAILED)
                self.close()

    def press_until_box(self, title):
        """The dialog takes clicks again as soon as the bus has told it that the host is gone."""
        def press_and_look():
            if not self.boxes():
                self.press(LOOKUP)
            return self.boxes()
        self.wait_for(press_and_look, f"the box '{title}'")
        self.close_box(title)


if __name__ == "__main__":
    unittest.main()
