"""What the dialog has around it: help, its place on the screen, backgrounds, and hosts that are slow or busy."""
import unittest

import stage
from controls import FOLLOW_DATE, FOLLOW_TIME, SPIN, DialogTest
from stage import ADD_IN, CLOCK_READ, CLOSE, LOGIN_FAILED, LOOKUP, SWITCHDESK, UPDATE, dialog_title
from stage import open_stage as setUpModule  # noqa: F401

HELP_PAGE = "Help \u2013 The clock of a PBX"
BUSY_BOX = "Horalink \u2013 Busy"
CALENDAR, TIME, TRACK, TRACK_DATE = "Calendar", "Time", "Follow the time", "Follow the date"
# Where a control is clicked that others cover in the middle, in parts of its width and height.
MIDDLE, EDGE, TOP = (0.5, 0.5), (0.015, 0.5), (0.5, 0.1)


class Help(DialogTest):
    def setUp(self):
        super().setUp()
        self.open_dialog()

    def test_f1_shows_the_opening_page_at_the_host(self):
        # A menu of a control that has none would take the key.
        for name in (CLOSE, UPDATE, "lblBevel 2"):
            stage.driver.click(self.node(name), button=3)
        stage.driver.click(self.calendar(), button=3)
        stage.driver.press("F1")
        self.host.wait_for_line('DisplayHelp("Horalink.hlp") -> Nothing')
        page = stage.driver.window(SWITCHDESK, HELP_PAGE)
        self.assertTrue(any(node.get_name().startswith("This window reads the clock") for node in stage.driver.nodes(page)))
        self.picture("help-page")
        stage.driver.raise_window(HELP_PAGE)
        stage.driver.press("Escape")
        self.wait_for(lambda: HELP_PAGE not in stage.driver.titles(SWITCHDESK), "the page to go")
        self.assert_usable()

    def wait_for_popup(self, title):
        self.wait_for(lambda: stage.driver.popup(ADD_IN) == title, f"the pop-up '{title}'")

    def assert_topic(self, title, choose):
        """Chooses the item of the menu, and takes the topic away that it leads to."""
        self.wait_for_popup(ADD_IN)
        choose()
        self.wait_for_popup(title)
        self.picture(title)
        stage.driver.press("Escape")
        self.wait_for_popup(None)

    def test_right_click(self):
        for name, role, place, topic in (
                ("lblBevel 0", None, EDGE, CALENDAR), ("lblBevel 1", None, TOP, TIME), ("lblTime", None, EDGE, TIME),
                ("Hour", None, MIDDLE, TIME), ("AM or PM", None, MIDDLE, TIME), (SPIN, None, MIDDLE, TIME),
                (FOLLOW_TIME, "check box", MIDDLE, TRACK), (FOLLOW_DATE, "check box", MIDDLE, TRACK_DATE)):
            with self.subTest(name):
                stage.driver.click(self.node(name, role), place, button=3)
                self.assert_topic(topic, lambda: stage.driver.click_popup(ADD_IN))
        for box, topic in ((FOLLOW_TIME, TRACK), (FOLLOW_DATE, TRACK_DATE)):
            with self.subTest("text beside a box", topic=topic):
                stage.driver.click(self.node(box, "check box"), (5, 0.5), button=3)
                self.assert_topic(topic, lambda: stage.driver.press("Down", "Return"))

    def test_keys(self):
        stage.driver.press("Tab", "Tab", "Tab")
        for key, moves, topic in (("Menu", 0, TIME), ("shift+F10", 1, TIME), ("Menu", 4, TRACK),
                                  ("shift+F10", 1, TRACK_DATE)):
            with self.subTest(key=key, topic=topic):
                for _ in range(moves):
                    stage.driver.press("Tab")
                stage.driver.press(key)
                self.assert_topic(topic, lambda: stage.driver.press("Return"))


class Place(DialogTest):
    def place(self):
        return stage.driver.place(self.dialog())

    def close_add_in(self):
        window = f"Switchdesk \u2013 {stage.EXCHANGE}"
        stage.driver.raise_window(window)
        stage.driver.click(stage.driver.find(SWITCHDESK, "Close add-in", "push button", window=window))
        self.host.wait_for_line("# add-in has left")
        self.wait_until_gone()

    def test_position_is_kept_over_two_starts(self):
        self.open_dialog()
        first = self.place()
        stage.driver.move_window(dialog_title(), 90, 70)
        moved = self.wait_for(lambda: self.place() != first and self.place(), "the dialog to move")
        self.close_add_in()
        self.assertRegex("\n".join(self.host.lines()), r'REGComData\("Horalink", "MOVE", "[\d.]+,[\d.]+"\)')
        for again in range(2):
            stage.driver.click(stage.driver.find(SWITCHDESK, "Open clock add-in", "push button"))
            self.dialog()
            self.wait_for(lambda: self.place() == moved, f"the dialog to come back to {moved}")
            self.picture(f"place-{again + 1}")
            self.close_add_in()
            self.host.skip()

    def test_background_is_chosen_and_kept(self):
        self.open_dialog()
        self.assertIn("# SetBackGround(0) returned", self.host.all_lines())
        before = self.ground()
        stage.driver.raise_window(f"Switchdesk \u2013 {stage.EXCHANGE}")
        stage.driver.press("alt+v", "b")
        stage.driver.find(SWITCHDESK, "Sand")
        self.picture("background-menu")
        stage.driver.press("Down", "Down", "Return")
        self.host.wait_for_line("# SetBackGround(2) returned")
        stage.driver.raise_window(dialog_title())
        self.wait_for(lambda: self.ground() != before, "another background")
        sand = self.ground()
        self.picture("background")
        self.close_add_in()
        stage.arrangement.end(self.host.process)
        self.open_dialog()
        self.assertIn("# SetBackGround(2) returned", self.host.all_lines())
        self.wait_for(lambda: self.ground() == sand, "the background to be as it was chosen")

    def ground(self):
        """The colour of the dialog in a corner that only its background fills."""
        left, top, *_ = self.place()
        return stage.driver.colour(left + 12, top + 12)


class BusyHost(DialogTest):
    def test_busy_box(self):
        self.open_dialog("--busy=60")
        self.press(LOOKUP)
        self.assertIn("is busy", self.box_text(BUSY_BOX))
        self.picture("busy")
        self.close_box(BUSY_BOX, "Cancel")
        self.assertIn("could not be reached", self.close_box(LOGIN_FAILED))
        self.host.skip()
        self.press(LOOKUP)
        # The box comes up for a host that stays busy; this one takes the call before.
        self.close_box(CLOCK_READ)
        self.assertIn("Login(\"Main Office\", <object>) -> busy", self.host.lines())


if __name__ == "__main__":
    unittest.main()
