"""The pop-up menu "What's This?" and the topic that it leads to, with the mouse and by keys."""
import unittest

import stage
from controls import FOLLOW_DATE, FOLLOW_TIME, SPIN, DialogTest
from stage import ADD_IN
from stage import open_stage as setUpModule  # noqa: F401

CALENDAR, TIME, TRACK, TRACK_DATE = "Calendar", "Time", "Follow the time", "Follow the date"
# Where a control is clicked that others cover in the middle, in parts of its width and height.
MIDDLE, EDGE, TOP = (0.5, 0.5), (0.015, 0.5), (0.5, 0.1)


class ContextHelp(DialogTest):
    def setUp(self):
        super().setUp()
        self.open_dialog()

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

    def test_menu_that_is_dismissed(self):
        stage.driver.click(self.node("Minute"), button=3)
        self.wait_for_popup(ADD_IN)
        stage.driver.press("Escape")
        self.wait_for_popup(None)
        self.assert_usable()


if __name__ == "__main__":
    unittest.main()
