"""The dialog's own controls, worked with real input: time and date by hand, help, place and background."""
import re
import unittest
from datetime import date

from end_to_end import Host
from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from driver import LARGEST_FRAME, LOWER, UPPER, Role
from stage import ADD_IN, LOOKUP, SWITCHDESK, EndToEndTest, dialog_title

SECTIONS = ["Hour", "Minute", "Second", "AM or PM"]
SPIN = "Change the selected part of the time"
FOLLOW_TIME, FOLLOW_DATE = "Follow the time of this PC", "Follow the date of this PC"
CALENDAR, TIME, TRACK, TRACK_DATE = "Calendar", "Time", "Follow the time", "Follow the date"
# Where a control is clicked that others cover in the middle, and a box on its text; in parts of width and height.
MIDDLE, EDGE, TOP, TEXT = (0.5, 0.5), (0.015, 0.5), (0.5, 0.1), (5, 0.5)


def month_name(day, months):
    """The month so many after that of a day, as the calendar calls it."""
    year, month = divmod(day.year * 12 + day.month - 1 + months, 12)
    return date(year, month + 1, 1).strftime("%B %Y")


def stepped(section, value, by):
    """What a section shows so many steps on."""
    if section == "AM or PM":
        return {"AM": "PM", "PM": "AM"}[value]
    first, count = (1, 12) if section == "Hour" else (0, 60)
    return f"{(int(value) - first + by) % count + first:02}"


def items_of(day, time):
    """The items of an update with a day and a time as the dialog shows it."""
    hour, minute, second, half = time
    hours = int(hour) % 12 + (12 if half == "PM" else 0)
    return [f"{day:%Y}", f"{day:%m%d}0{day.isoweekday() % 7}", f"{hours:02}{minute}{second}"]


class DialogTest(EndToEndTest):
    """Works the controls of the dialog that a host has opened."""

    def setUp(self):
        super().setUp()
        self.open_dialog()

    def open_dialog(self):
        self.host = Host(self).open()
        stage.driver.raise_window(dialog_title())

    def node(self, name, role):
        return stage.driver.find(ADD_IN, name, role)

    def click_box(self, name):
        stage.driver.click(self.node(name, Role.CHECK_BOX))


class Setting(DialogTest):
    def test_time_and_date_by_hand(self):
        for box in (FOLLOW_TIME, FOLLOW_DATE):
            self.click_box(box)
        spin = self.node(SPIN, Role.SPIN_BUTTON)
        ways = [("arrow up", 1, lambda _: stage.driver.click(spin, UPPER)),
                ("arrow down", -1, lambda _: stage.driver.click(spin, LOWER)),
                ("key up", 1, lambda _: stage.driver.press("Up")),
                ("wheel up", 1, lambda node: stage.driver.turn_wheel(node, True))]
        for section in SECTIONS:
            node = self.node(section, Role.TEXT)
            stage.driver.click(node)
            self.wait_for(lambda: stage.driver.is_focused(node), f"'{section}' to have the focus")
            expected = stage.driver.value(node)
            for way, by, act in ways:
                with self.subTest(section=section, way=way):
                    expected = stepped(section, expected, by)
                    act(node)
                    self.wait_for(lambda: stage.driver.value(node) == expected, f"'{section}' to show {expected}")
        day = self.choose_day()
        shown = self.time_shown()
        self.assertEqual(self.update(), items_of(day, shown))
        self.assertEqual(self.time_shown(), shown)
        self.wait_for_calendar(f"{day:%A}, {day.day} {day:%B} {day.year}")
        self.click_box(FOLLOW_TIME)
        self.wait_for(lambda: self.time_shown() != shown, "the time to follow the PC")
        self.assertFalse(stage.driver.is_enabled(spin))

    def choose_day(self):
        """A day of the next month a year on; until it is chosen there is nothing to send."""
        today = date.today()
        for name in (month_name(today, 1), month_name(today, 13)):
            stage.driver.click(self.node(name, Role.PUSH_BUTTON))
            self.wait_for_calendar(name)
        self.wait_for(lambda: not self.is_enabled(stage.UPDATE), "the update button to be off")
        self.assertTrue(self.is_enabled(LOOKUP))
        day = date(today.year + (2 if today.month == 12 else 1), today.month % 12 + 1, 17)
        stage.driver.click_day(ADD_IN, day.year, day.month, day.day)
        self.wait_until_enabled(stage.UPDATE)
        return day

    def wait_for_calendar(self, name):
        self.wait_for(lambda: stage.driver.calendar(ADD_IN).get_name() == name, f"the calendar to show {name}")

    def time_shown(self):
        return [stage.driver.value(self.node(section, Role.TEXT)) for section in SECTIONS]

    def update(self):
        """Sends the update; returns the three values that the host got."""
        self.press(stage.UPDATE)
        self.assertEqual(self.close_box(stage.CLOCK_READ), "The date and time of the PBX have been updated.")
        sent = [re.fullmatch(r'SecondData\(\d\) -> "(\d+)"', line) for line in self.host.lines()]
        return [match[1] for match in sent if match][:3]


class Help(DialogTest):
    def wait_for_popup(self, title):
        self.wait_for(lambda: stage.driver.popup(ADD_IN) == title, f"the pop-up '{title}'")

    def test_right_click(self):
        for name, role, place, topic in (
                ("lblBevel 0", Role.PANEL, EDGE, CALENDAR), ("lblBevel 1", Role.PANEL, TOP, TIME), ("lblTime", Role.PANEL, EDGE, TIME),
                (SPIN, Role.SPIN_BUTTON, MIDDLE, TIME), (FOLLOW_TIME, Role.CHECK_BOX, MIDDLE, TRACK),
                (FOLLOW_DATE, Role.CHECK_BOX, TEXT, TRACK_DATE)):
            with self.subTest(name, place=place):
                stage.driver.click(self.node(name, role), place, button=3)
                self.wait_for_popup(ADD_IN)
                stage.driver.click_popup(ADD_IN)
                self.wait_for_popup(topic)
                stage.driver.press("Escape")
                self.wait_for_popup(None)


class Kept(DialogTest):
    def test_place_and_background_are_kept_over_two_starts(self):
        first = self.place()
        stage.driver.move_window(dialog_title(), 90, 70)
        moved = self.wait_for(lambda: self.place() != first and self.place(), "the dialog to move")
        before = self.ground()
        self.choose_sand()
        sand = self.wait_for(lambda: self.ground() != before and self.ground(), "another background")
        for _ in range(2):
            self.close_dialog()
            self.open_dialog()
            self.wait_for(lambda: self.place() == moved, f"the dialog to come back to {moved}")
            self.wait_for(lambda: self.ground() == sand, "the background to be as it was chosen")

    def test_corner_of_the_screen_is_a_place(self):
        """The window manager keeps no more than the frame on the screen."""
        store = stage.arrangement.folder / "home/data/switchdesk/store.ini"
        for stored in ("0,0", "3,-3"):
            with self.subTest(stored):
                self.close_dialog()
                store.write_text(re.sub(r"(?m)^MOVE=.*$", f"MOVE={stored}", store.read_text()))
                self.open_dialog()
                self.assertLessEqual(max(self.place()[:2]), LARGEST_FRAME)

    def close_dialog(self):
        self.host.close_add_in()
        self.host.wait_for_line("# add-in has left")
        self.wait_until_gone()
        stage.arrangement.end(self.host.process)

    def choose_sand(self):
        stage.driver.raise_window(f"Switchdesk \u2013 {stage.EXCHANGE}")
        stage.driver.press("alt+v", "b")
        stage.driver.find(SWITCHDESK, "Sand", Role.MENU_ITEM)
        stage.driver.press("Down", "Down", "Return")
        self.host.wait_for_line("# SetBackGround(2) returned")
        stage.driver.raise_window(dialog_title())

    def place(self):
        return stage.driver.place(self.dialog())

    def ground(self):
        """The colour of the dialog in a corner that only its background fills."""
        left, top, *_ = self.place()
        return stage.driver.colour(left + 12, top + 12)


if __name__ == "__main__":
    unittest.main()
