"""The add-in as a plain program, which creates the host's exchange object by the name of its class."""
import subprocess
import unittest

from end_to_end import Host
from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from stage import (ADD_IN, CLOCK_READ, CLOSE, EXCHANGE, LOOKUP, SWITCHDESK, UPDATE, EndToEndTest,
                   dialog_title, pids)


class StandAlone(EndToEndTest):
    def serve(self, *options):
        """A host with a window that serves the class, and that misbehaves as told."""
        host = Host(self, *options, exchange=None)
        self.wait_for(lambda: stage.bus.name_has_owner(stage.EXCHANGE_CLASS), stage.EXCHANGE_CLASS)
        return host

    def start_add_in(self, exchange=EXCHANGE):
        self.add_in = self.start([stage.arrangement.add_in, exchange], stderr=subprocess.PIPE, text=True)
        stage.driver.window(ADD_IN)

    def close(self):
        """Closes the dialog, and with it the program."""
        self.press(CLOSE)
        self.assert_good_end()

    def assert_good_end(self):
        self.wait_for(lambda: self.add_in.poll() is not None, "the add-in to end")
        self.assertEqual((self.add_in.returncode, self.add_in.stderr.read()), (0, ""))

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

    def test_dialog_without_a_connection(self):
        """The exchange is unknown, refuses, or there is no host at all: only the close button is left."""
        for name, exchange, prepare in (
                ("unknown exchange", "Attic", self.serve),
                ("host dies while connecting", EXCHANGE, lambda: self.serve("--leave=connect")),
                ("no host", EXCHANGE, lambda: stage.arrangement.host.unlink())):
            with self.case(name):
                prepare()
                self.start_add_in(exchange)
                self.assertEqual([self.is_enabled(button) for button in (LOOKUP, UPDATE, CLOSE)], [False, False, True])
                self.assertEqual(stage.driver.titles(ADD_IN), ["PBX Clock" if name == "no host" else dialog_title(exchange)])
                self.close()


if __name__ == "__main__":
    unittest.main()
