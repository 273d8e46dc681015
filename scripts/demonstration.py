"""Goes through the dialog and its host by clicks and keys, and takes a picture of each step."""
import re
from datetime import date

from sandbox import wait_for
from driver import LIMIT, UPPER, Driver, Role
from texts import Texts

HOST = "Switchdesk \u2013 "
DAY = 24 * 60 * 60


class Demonstration:
    def __init__(self, sandbox, pictures, exchange):
        self.driver = Driver(sandbox)
        self.texts = Texts(sandbox)
        self.dialog = self.texts.title(exchange)
        self.host = HOST + exchange
        self.pictures = pictures
        self.steps = 0
        pictures.mkdir(exist_ok=True)

    def run(self):
        """Returns whether every step gave the expected result."""
        self.open()
        self.picture("host", self.driver.window("switchdesk"))
        self.picture("dialog", self.window())
        self.press(self.texts.lookup, "lookup")
        good = self.update_and_read("the time of the PC", date.today())
        good &= self.update_and_read("a date and time set by hand", self.set_by_hand())
        self.change_background()
        self.ask_for_help()
        good &= self.close_and_open_again()
        self.picture("screen")
        return good

    # --- steps ------------------------------------------------------------------------------------

    def open(self):
        self.driver.window("horalink", self.dialog, seconds=30)
        self.driver.raise_window(self.dialog)

    def update_and_read(self, what, day):
        """Sends what the dialog shows. The next lookup has to show that the exchange's clock runs on from there."""
        seconds = self.held_seconds()
        self.press(self.texts.update, "update")
        shown = self.press(self.texts.lookup, "lookup-after-update")
        found = re.search(r"(\d{4})/(\d\d)/(\d\d).*?(\d\d):(\d\d):(\d\d)", shown, re.S)
        year, month, number, *time = map(int, found.groups()) if found else [0] * 6
        good = (year, month, number) == (day.year, day.month, day.day) and \
            (self.seconds(*time) - seconds) % DAY < 90
        return self.report(good, f"the lookup shows {what}")

    def set_by_hand(self):
        """Steps every part of the time, and chooses the first day of the next month; returns that day."""
        for name in ("chkTrack", "chkTrackDate"):
            self.driver.untick(self.control(Role.CHECK_BOX, name))
        for part in range(4):
            section = self.choose_part(part)
            before = self.driver.value(section)
            self.driver.click(self.control(Role.SPIN_BUTTON, "updTime"), UPPER)
            wait_for(lambda: self.driver.value(section) != before, LIMIT, f"part {part} of the time to change")
        # Tab leads from this part to the two check boxes and then to the calendar.
        self.choose_part(0)
        self.driver.press("Tab", "Tab", "Tab", "Next", "Return")
        self.driver.wait_until_enabled("horalink", self.texts.update)
        self.picture("set-by-hand", self.window())
        today = date.today()
        return date(today.year + today.month // 12, today.month % 12 + 1, 1)

    def choose_part(self, number):
        section = self.control(Role.TEXT, "txtTime", number)
        self.driver.click(section)
        wait_for(lambda: self.driver.is_focused(section), LIMIT, f"part {number} of the time to be chosen")
        return section

    def change_background(self):
        before = self.corner()
        self.driver.raise_window(self.host)
        self.driver.click(self.driver.find("switchdesk", self.texts.host("&View"), Role.MENU_ITEM))
        self.driver.press("Down", "Right", "Down", "Return")
        self.driver.raise_window(self.dialog)
        wait_for(lambda: self.corner() != before, LIMIT, "the background to change")
        print("--- the host has put another background on the dialog")
        self.picture("background", self.window())

    def ask_for_help(self):
        self.driver.press("F1")
        page = self.driver.box("switchdesk", besides=[self.host])
        title = page.get_name()
        print(f"--- the host shows the help: {title}")
        self.driver.raise_window(title)
        self.picture("help", page)
        self.driver.press("Escape")
        wait_for(lambda: not self.driver.has_window("switchdesk", title), LIMIT, "the help page to close")

    def close_and_open_again(self):
        """Checks that the dialog reopens where it was closed, with the chosen background."""
        ground = self.corner()
        self.driver.move_window(self.dialog, 120, 90)
        moved = wait_for(lambda: self.driver.place(self.window())[0] < 200 and self.driver.place(self.window()), LIMIT,
                         "the dialog to move")
        self.driver.raise_window(self.host)
        self.driver.click(self.driver.find("switchdesk", self.texts.host("&Close add-in"), Role.PUSH_BUTTON))
        wait_for(lambda: not self.driver.titles("horalink"), LIMIT, "the add-in to end")
        self.driver.click(self.driver.find("switchdesk", self.texts.host("&Open clock add-in"), Role.PUSH_BUTTON))
        self.open()
        wait_for(lambda: self.driver.place(self.window()) == moved, LIMIT, f"the dialog to be at {moved} again")
        wait_for(lambda: self.corner() == ground, LIMIT, "the background to be as it was chosen")
        return self.report(True, f"the dialog is at {moved[0]}, {moved[1]} again, where it was closed")

    # --- helpers ----------------------------------------------------------------------------------

    @staticmethod
    def report(good, what):
        print(f"--- {what}" if good else f"--- FAILED: {what}", flush=True)
        return good

    def window(self):
        return self.driver.window("horalink", self.dialog)

    def control(self, role, name, index=-1):
        return self.driver.find("horalink", self.texts.control(name, index), role)

    def corner(self):
        """The colour of the dialog at a point that shows only the background."""
        left, top, *_ = self.driver.place(self.window())
        return self.driver.colour(left + 12, top + 12)

    def picture(self, name, window=None):
        self.steps += 1
        self.driver.picture(self.pictures / f"{self.steps:02}-{name}.png", window)

    def press(self, button, name):
        """Presses a button of the dialog, closes the box that opens and returns its text. The dialog is ready again."""
        self.driver.click(self.driver.find("horalink", button, Role.PUSH_BUTTON))
        box = self.driver.box("horalink", besides=[self.dialog])
        text = "\n".join(text for text in self.driver.texts(box) if text.strip())
        print(f"--- {name}: " + " / ".join(re.split(r"[\r\n]+", text)), flush=True)
        self.picture(name, box)
        self.driver.close_box("horalink", box)
        self.driver.wait_until_enabled("horalink", button)
        return text

    @staticmethod
    def seconds(hours, minutes, seconds):
        return hours * 3600 + minutes * 60 + seconds

    def held_seconds(self):
        """The time that the dialog shows, in seconds of the day."""
        sections = [self.control(Role.TEXT, "txtTime", part) for part in range(4)]

        def shown():
            return [self.driver.value(section) for section in sections]
        # Reads twice, since the time may advance while its parts are read.
        hour, minute, second, half = wait_for(lambda: (time := shown()) == shown() and time, LIMIT, "the time to be read")
        return self.seconds(int(hour) % 12 + (12 if half == "PM" else 0), int(minute), int(second))
