"""The companion host and the add-in: two hosts at one dialog, what is kept between starts, and what a trace says."""
import os
import signal
import unittest
from datetime import date

from end_to_end import Host
from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from driver import Role
from stage import ADD_IN, EXCHANGE, SWITCHDESK, dialog_title, pids


class Requests(stage.EndToEndTest):
    def test_the_trace_says_what_was_passed_over_and_why_an_answer_was_judged_so(self):
        log = stage.arrangement.folder / "bus.log"
        before = len(log.read_text(encoding="utf-8").splitlines())
        Host(self, "--trace", "--item=0:SecondData=MMXXVI", "--lack=ShowCode").open()
        self.press(stage.LOOKUP)
        self.close_box("Reading Failed")
        traced = [line for line in log.read_text(encoding="utf-8").splitlines()[before:] if line.startswith("horalink:")]
        self.assertEqual([line.partition(", ")[0] for line in traced], [
            "horalink: ShowCode skipped: error 438",
            'horalink: item 0: SecondData "MMXXVI" and item 1: SecondData "' + f'{date.today():%m/%d}" aren\'t a date: reading failed'])

    def test_the_login_of_an_add_in_that_dies_is_given_back(self):
        host = Host(self, "--answer=never", "--logins=1").open()
        self.press(stage.LOOKUP)
        host.wait_for_line('ShowMessage("PBX clock request: R1"')
        os.kill(*pids(ADD_IN), signal.SIGKILL)
        host.wait_for_line("# add-in has left")
        stage.driver.click(stage.driver.find(SWITCHDESK, "Open clock add-in", Role.PUSH_BUTTON))
        self.dialog()
        self.press(stage.LOOKUP)
        host.wait_for_line('Login("Main Office", <object>) -> "L2"')

    def test_last_of_two_hosts_ends_the_process(self):
        first = Host(self).open()
        second = Host(self, exchange="Warehouse").open()
        self.assertEqual(len(pids(ADD_IN)), 1)
        stage.driver.raise_window(dialog_title("Warehouse"))
        self.look_up()
        self.assertIn('Login("Warehouse", <object>) -> "L1"', second.lines())
        self.assertEqual(first.calls(), [])
        first.close_add_in()
        first.wait_for_line("# lets go of the add-in")
        stage.driver.raise_window(dialog_title("Warehouse"))
        self.assert_usable()
        second.close_add_in()
        second.wait_for_line("# add-in has left")
        self.wait_until_gone()
        self.assertFalse(any(line.startswith("REGComData") for line in first.lines()))
        (saved,) = [line for line in second.lines() if line.startswith("REGComData")]
        self.assertRegex(saved, r'^REGComData\("Horalink", "MOVE", "-?[\d.]+,-?[\d.]+"\) -> Nothing$')


class Kept(stage.EndToEndTest):
    def begin(self):
        super().begin()
        self.open_dialog()

    def open_dialog(self):
        self.host = Host(self).open()
        stage.driver.raise_window(dialog_title())

    def test_place_and_background_are_kept_over_two_starts(self):
        first, before = self.place(), self.ground()
        stage.driver.move_window(dialog_title(), 90, 70)
        moved = self.wait_for(lambda: self.place() != first and self.place(), "the dialog to move")
        stage.driver.raise_window(f"Switchdesk \u2013 {EXCHANGE}")
        stage.driver.press("alt+v", "b")
        stage.driver.find(SWITCHDESK, "Sand", Role.MENU_ITEM)
        stage.driver.press("Down", "Down", "Return")
        self.host.wait_for_line("# SetBackGround(2) returned")
        stage.driver.raise_window(dialog_title())
        sand = self.wait_for(lambda: self.ground() != before and self.ground(), "another background")
        for _ in range(2):
            self.close_dialog()
            self.open_dialog()
            self.wait_for(lambda: self.place() == moved, f"the dialog to come back to {moved}")
            self.wait_for(lambda: self.ground() == sand, "the background to be as it was chosen")

    def close_dialog(self):
        self.host.close_add_in()
        self.host.wait_for_line("# add-in has left")
        self.wait_until_gone()
        stage.arrangement.end(self.host.process)

    def place(self):
        return stage.driver.place(self.dialog())

    def ground(self):
        """The colour of the dialog in a corner that only its background fills."""
        left, top, *_ = self.place()
        return stage.driver.colour(left + 12, top + 12)


if __name__ == "__main__":
    unittest.main()
