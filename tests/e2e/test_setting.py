"""Date and time set by hand, and what the exchange gets of it."""
import unittest
from datetime import date

from controls import FOLLOW_DATE, FOLLOW_TIME, SECTIONS, SPIN, DialogTest, items_of, month_name
from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from driver import LOWER, UPPER
from stage import ADD_IN, LOOKUP


def stepped(section, value, by):
    """What a section shows so many steps on."""
    if section == "AM or PM":
        return value if by % 2 == 0 else {"AM": "PM", "PM": "AM"}[value]
    first, count = (1, 12) if section == "Hour" else (0, 60)
    return f"{(int(value) - first + by) % count + first:02}"


class Setting(DialogTest):
    def setUp(self):
        super().setUp()
        self.open_dialog()
        self.today = date.today()

    def test_every_section_in_every_way(self):
        self.click_box(FOLLOW_TIME)
        spin = self.node(SPIN)
        ways = [("arrow up", 1, lambda _: stage.driver.click(spin, UPPER)),
                ("arrow down", -1, lambda _: stage.driver.click(spin, LOWER)),
                ("key up", 1, lambda _: stage.driver.press("Up")),
                ("key down", -1, lambda _: stage.driver.press("Down")),
                ("wheel up", 1, lambda node: stage.driver.turn_wheel(node, True)),
                ("wheel down", -1, lambda node: stage.driver.turn_wheel(node, False)),
                ("key up again", 1, lambda _: stage.driver.press("Up"))]
        for section in SECTIONS:
            node = self.enter(section)
            expected = stage.driver.value(node)
            for way, by, act in ways:
                with self.subTest(section=section, way=way):
                    expected = stepped(section, expected, by)
                    act(node)
                    self.wait_for_value(section, expected)
        shown = self.time_shown()
        self.assertEqual(self.update()[2], items_of(self.today, shown)[2])
        self.assertEqual(self.time_shown(), shown)
        self.click_box(FOLLOW_TIME)
        self.wait_for(lambda: self.time_shown() != shown, "the time to follow the PC")
        self.assertFalse(stage.driver.is_enabled(spin))
        second = stage.driver.value(self.node("Second"))
        self.wait_for(lambda: stage.driver.value(self.node("Second")) != second, "the time to run")

    def test_date_by_mouse(self):
        self.click_box(FOLLOW_DATE)
        self.turn(month_name(self.today, 1))
        self.wait_for_update_button(False)
        self.assertTrue(self.is_enabled(LOOKUP))
        self.turn(month_name(self.today, 13))
        day = date(self.today.year + (2 if self.today.month == 12 else 1), self.today.month % 12 + 1, 17)
        stage.driver.click_day(ADD_IN, day.year, day.month, day.day)
        self.wait_for_day(day)
        self.wait_for_update_button(True)
        self.click_box(FOLLOW_TIME)
        shown = self.time_shown()
        self.assertEqual(self.update(), items_of(day, shown))
        self.wait_for_day(day)

    def test_year_outside_the_range(self):
        self.click_box(FOLLOW_DATE)
        stage.driver.click_day(ADD_IN, self.today.year, self.today.month, self.today.day)
        stage.driver.press_often("ctrl+Next", 2100 - self.today.year)
        self.assertIn("1901 to 2099", self.close_box("Year Out of Range"))
        self.wait_for_calendar(self.today.replace(day=1, year=2099).strftime("%B %Y"))
        self.wait_for_update_button(False)
        day = date(2099, self.today.month, 28)
        stage.driver.click_day(ADD_IN, day.year, day.month, day.day)
        self.wait_for_update_button(True)
        self.assertEqual(self.update()[:2], items_of(day, ["12", "00", "00", "AM"])[:2])


if __name__ == "__main__":
    unittest.main()
