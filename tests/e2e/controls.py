"""What tests of the dialog's own controls share: names, and the values that it shows."""
import re
from datetime import date

from end_to_end import Host

import stage
from stage import ADD_IN, EndToEndTest

SECTIONS = ["Hour", "Minute", "Second", "AM or PM"]
SPIN = "Change the selected part of the time"
FOLLOW_TIME, FOLLOW_DATE = "Follow the time of this PC", "Follow the date of this PC"


def month_name(day, months=0):
    """The month of a day, or one so many away, as the calendar calls it."""
    year, month = divmod(day.year * 12 + day.month - 1 + months, 12)
    return date(year, month + 1, 1).strftime("%B %Y")


class DialogTest(EndToEndTest):
    """Works the controls of the dialog that a host has opened."""

    def open_dialog(self, *options):
        self.host = Host(self, *options).open()
        stage.driver.raise_window(stage.dialog_title())

    def node(self, name, role=None):
        return stage.driver.find(ADD_IN, name, role)

    def click_box(self, name):
        stage.driver.click(self.node(name, "check box"))

    def enter(self, section):
        """Makes a section of the time the one that the spin control changes."""
        node = self.node(section)
        stage.driver.click(node)
        self.wait_for(lambda: stage.driver.is_focused(node), f"'{section}' to have the focus")
        return node

    def wait_for_value(self, section, expected):
        node = self.node(section)
        self.wait_for(lambda: stage.driver.value(node) == expected, f"'{section}' to show {expected}")

    def time_shown(self):
        return [stage.driver.value(self.node(section)) for section in SECTIONS]

    def calendar(self):
        return stage.driver.calendar(ADD_IN)

    def wait_for_calendar(self, name):
        self.wait_for(lambda: self.calendar().get_name() == name, f"the calendar to show {name}")

    def wait_for_day(self, day):
        self.wait_for_calendar(f"{day:%A}, {day.day} {day:%B} {day.year}")

    def turn(self, name):
        """Turns the calendar by the arrow that leads to a month."""
        stage.driver.click(self.node(name, "push button"))
        self.wait_for_calendar(name)

    def wait_for_update_button(self, enabled):
        self.wait_for(lambda: self.is_enabled(stage.UPDATE) == enabled, f"the update button to be {enabled}")

    def update(self):
        """Sends the update; returns the three values that the host got."""
        self.host.skip()
        self.press(stage.UPDATE)
        self.assertEqual(self.close_box(stage.CLOCK_READ), "The date and time of the PBX have been updated.")
        sent = [re.fullmatch(r'SecondData\(\d\) -> "(\d+)"', line) for line in self.host.lines()]
        return [match[1] for match in sent if match][:3]


def items_of(day, time):
    """The items of an update with a day and a time as the dialog shows it."""
    hour, minute, second, half = time
    hours = int(hour) % 12 + (12 if half == "PM" else 0)
    return [f"{day:%Y}", f"{day:%m%d}0{day.isoweekday() % 7}", f"{hours:02}{minute}{second}"]
