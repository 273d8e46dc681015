"""What the dialog has around it: help, its place on the screen, and backgrounds."""
import unittest

from controls import FOLLOW_DATE, FOLLOW_TIME, SPIN, DialogTest
from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from stage import ADD_IN, SWITCHDESK, dialog_title

HELP_PAGE = "Help \u2013 The clock of a PBX"
CALENDAR, TIME, TRACK, TRACK_DATE = "Calendar", "Time", "Follow the time", "Follow the date"
# Where a control is clicked that others cover in the middle, and a box on its text; in parts of width and height.
MIDDLE, EDGE, TOP, TEXT = (0.5, 0.5), (0.015, 0.5), (0.5, 0.1), (5, 0.5)


class Help(DialogTest):
    def setUp(self):
        super().setUp()
        self.open_dialog()

    def test_f1_shows_the_opening_page_at_the_host(self):
        stage.driver.press("F1")
        self.host.wait_for_line('DisplayHelp("Horalink.hlp") -> Nothing')
        page = stage.driver.window(SWITCHDESK, HELP_PAGE)
        self.assertTrue(any(node.get_name().startswith("This window reads the clock") for node in stage.driver.nodes(page)))
        stage.driver.raise_window(HELP_PAGE)
        stage.driver.press("Escape")
        self.wait_for(lambda: HELP_PAGE not in stage.driver.titles(SWITCHDESK), "the page to go")
        self.assert_usable()

    def wait_for_popup(self, title):
        self.wait_for(lambda: stage.driver.popup(ADD_IN) == title, f"the pop-up '{title}'")

    def test_right_click(self):
        for name, role, place, topic in (
                ("lblBevel 0", None, EDGE, CALENDAR), ("lblBevel 1", None, TOP, TIME), ("lblTime", None, EDGE, TIME),
                ("Hour", None, MIDDLE, TIME), ("AM or PM", None, MIDDLE, TIME), (SPIN, None, MIDDLE, TIME),
                (FOLLOW_TIME, "check box", MIDDLE, TRACK), (FOLLOW_DATE, "check box", MIDDLE, TRACK_DATE),
                (FOLLOW_TIME, "check box", TEXT, TRACK), (FOLLOW_DATE, "check box", TEXT, TRACK_DATE)):
            with self.subTest(name, place=place):
                stage.driver.click(self.node(name, role), place, button=3)
                self.wait_for_popup(ADD_IN)
                stage.driver.click_popup(ADD_IN)
                self.wait_for_popup(topic)
                stage.driver.press("Escape")
                self.wait_for_popup(None)


class Place(DialogTest):
    def place(self):
        return stage.driver.place(self.dialog())

    def close_add_in(self):
        self.host.close_add_in()
        self.host.wait_for_line("# add-in has left")
        self.wait_until_gone()

    def test_position_is_kept_over_two_starts(self):
        self.open_dialog()
        first = self.place()
        stage.driver.move_window(dialog_title(), 90, 70)
        moved = self.wait_for(lambda: self.place() != first and self.place(), "the dialog to move")
        self.close_add_in()
        self.assertRegex("\n".join(self.host.lines()), r'REGComData\("Horalink", "MOVE", "[\d.]+,[\d.]+"\)')
        for _ in range(2):
            stage.driver.click(stage.driver.find(SWITCHDESK, "Open clock add-in", "push button"))
            self.dialog()
            self.wait_for(lambda: self.place() == moved, f"the dialog to come back to {moved}")
            self.close_add_in()
            self.host.skip()

    def test_background_is_chosen_and_kept(self):
        self.open_dialog()
        self.assertIn("# SetBackGround(0) returned", self.host.all_lines())
        before = self.ground()
        stage.driver.raise_window(f"Switchdesk \u2013 {stage.EXCHANGE}")
        stage.driver.press("alt+v", "b")
        stage.driver.find(SWITCHDESK, "Sand")
        stage.driver.press("Down", "Down", "Return")
        self.host.wait_for_line("# SetBackGround(2) returned")
        stage.driver.raise_window(dialog_title())
        self.wait_for(lambda: self.ground() != before, "another background")
        sand = self.ground()
        self.close_add_in()
        stage.arrangement.end(self.host.process)
        self.open_dialog()
        self.assertIn("# SetBackGround(2) returned", self.host.all_lines())
        self.wait_for(lambda: self.ground() == sand, "the background to be as it was chosen")

    def ground(self):
        """The colour of the dialog in a corner that only its background fills."""
        left, top, *_ = self.place()
        return stage.driver.colour(left + 12, top + 12)


if __name__ == "__main__":
    unittest.main()
