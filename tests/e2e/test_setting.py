"""Date and time set by hand, with the mouse and with the keyboard, and what the exchange gets of it."""
import unittest
from datetime import date, timedelta

import stage
from controls import DOWN, FOLLOW_DATE, FOLLOW_TIME, SECTIONS, SPIN, UP, DialogTest, items_of, month_name
from stage import ADD_IN, CLOSE, LOOKUP, UPDATE
from stage import open_stage as setUpModule  # noqa: F401

YEAR_REFUSED = "Year Out of Range"


def stepped(section, value, by):
    """What a section shows so many steps on."""
    if section == "AM or PM":
        return value if by % 2 == 0 else {"AM": "PM", "PM": "AM"}[value]
    first, count = (1, 12) if section == "Hour" else (0, 60)
    return f"{(int(value) - first + by) % count + first:02}"


class Time(DialogTest):
    def setUp(self):
        super().setUp()
        self.open_dialog()
        self.click_box(FOLLOW_TIME)

    def test_every_section_in_every_way(self):
        spin = self.node(SPIN)
        ways = [("arrow up", 1, lambda _: stage.driver.click(spin, UP)),
                ("arrow down", -1, lambda _: stage.driver.click(spin, DOWN)),
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
        self.picture("time")
        shown = self.time_shown()
        self.assertEqual(self.update()[2], items_of(date.today(), shown)[2])
        self.assertEqual(self.time_shown(), shown)

    def test_time_follows_the_pc_again(self):
        self.enter("Hour")
        stage.driver.press("Up")
        self.enter("AM or PM")
        stage.driver.press("Up")
        chosen = self.time_shown()
        self.click_box(FOLLOW_TIME)
        self.wait_for(lambda: self.time_shown() != chosen, "the time to follow the PC")
        self.assertFalse(stage.driver.is_enabled(self.node(SPIN)))
        second = stage.driver.value(self.node("Second"))
        self.wait_for(lambda: stage.driver.value(self.node("Second")) != second, "the time to run")


class Date(DialogTest):
    def setUp(self):
        super().setUp()
        self.open_dialog()
        self.today = date.today()

    def test_by_mouse(self):
        self.click_box(FOLLOW_DATE)
        self.turn(month_name(self.today, 1))
        self.wait_for_update_button(False)
        self.assertTrue(self.is_enabled(LOOKUP))
        self.picture("no-day")
        self.turn(month_name(self.today, 13))
        day = date.fromisoformat(f"{self.today.year + (2 if self.today.month == 12 else 1)}"
                                 f"-{self.today.month % 12 + 1:02}-17")
        stage.driver.click_day(ADD_IN, day.year, day.month, day.day)
        self.wait_for_day(day)
        self.wait_for_update_button(True)
        self.picture("chosen-day")
        self.click_box(FOLLOW_TIME)
        shown = self.time_shown()
        self.assertEqual(self.update(), items_of(day, shown))
        self.wait_for_day(day)

    def test_by_keyboard_alone(self):
        names = [CLOSE, UPDATE, LOOKUP, "AM or PM", SPIN, "Second", "Minute", "Hour", FOLLOW_TIME, FOLLOW_DATE,
                 f"{self.today:%A}, "]
        for name in names:
            self.wait_for_focus(name)
            if name in (FOLLOW_TIME, FOLLOW_DATE):
                stage.driver.press("space")
            if name != names[-1]:
                stage.driver.press("Tab")
        day = self.today
        for key, days in (("Right", 1), ("Down", 7), ("Left", -1), ("Up", -7), ("Right", 1)):
            stage.driver.press(key)
            day += timedelta(days)
            self.wait_for_day(day)
        self.picture("keyboard")
        stage.driver.press("Next")
        self.wait_for_calendar(month_name(day, 1))
        self.wait_for_update_button(False)
        stage.driver.press("Prior")
        self.wait_for_calendar(month_name(day))
        self.wait_for_update_button(False)
        stage.driver.press("Return")
        day = day.replace(day=1)
        self.wait_for_day(day)
        self.wait_for_update_button(True)
        # The selectors come behind the calendar, and behind them all begins anew.
        for months in (-1, 1, -12, 12):
            stage.driver.press("Tab")
            self.wait_for_focus(month_name(day, months))
        stage.driver.press("space")
        self.wait_for_calendar(month_name(day, 12))
        stage.driver.press("Tab")
        self.wait_for_focus(CLOSE)

    def wait_for_focus(self, name):
        self.wait_for(lambda: (stage.driver.focused_name(ADD_IN) or "").startswith(name), f"'{name}' to have the focus")

    def test_date_follows_the_pc_again(self):
        self.click_box(FOLLOW_DATE)
        self.turn(month_name(self.today, -1))
        self.wait_for_update_button(False)
        self.click_box(FOLLOW_DATE)
        self.wait_for_day(self.today)
        self.wait_for_update_button(True)
        # The calendar is the PC's again: it takes no day.
        stage.driver.click_day(ADD_IN, self.today.year, self.today.month, 1 if self.today.day > 1 else 2)
        self.click_box(FOLLOW_DATE)
        self.node(month_name(self.today, 1), "push button")
        self.wait_for_day(self.today)

    def test_years_outside_the_range(self):
        self.click_box(FOLLOW_DATE)
        stage.driver.click_day(ADD_IN, self.today.year, self.today.month, self.today.day)
        for key, years, last in (("ctrl+Prior", self.today.year - 1900, 1901), ("ctrl+Next", 2100 - 1901, 2099)):
            stage.driver.press_often(key, years)
            text = self.box_text(YEAR_REFUSED)
            self.assertIn("1901 to 2099", text)
            self.picture(f"year-{last}")
            self.close_box(YEAR_REFUSED)
            self.wait_for_calendar(self.today.replace(day=1, year=last).strftime("%B %Y"))
            self.wait_for_update_button(False)
        day = date(2099, self.today.month, 28)
        stage.driver.click_day(ADD_IN, day.year, day.month, day.day)
        self.wait_for_update_button(True)
        self.assertEqual(self.update()[:2], items_of(day, ["12", "00", "00", "AM"])[:2])


if __name__ == "__main__":
    unittest.main()
