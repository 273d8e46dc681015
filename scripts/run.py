"""What ./run does once everything is built."""
import os
import re
import subprocess
import sys
from pathlib import Path

from arrangement import Arrangement, wait_for

EXCHANGE = "Main Office"
DIALOG = f"PBX Clock ({EXCHANGE})"
UPDATE = "Set the clock of the PBX"
LOOKUP = "Read the clock of the PBX"


class Demonstration:
    """A lookup, an update and a second lookup, by clicks; each step in a picture."""

    def __init__(self, arrangement, pictures):
        from driver import Driver
        self.driver = Driver(arrangement)
        self.pictures = pictures
        self.steps = 0
        pictures.mkdir(exist_ok=True)

    def picture(self, name, window=None):
        self.steps += 1
        self.driver.picture(self.pictures / f"{self.steps:02}-{name}.png", window)

    def press(self, button, name):
        """Presses a button of the dialog, reads the box that comes of it, and closes it."""
        self.driver.click(self.driver.find("horalink", button))
        box = self.driver.box("horalink", besides=[DIALOG])
        text = "\n".join(text for text in self.driver.texts(box) if text.strip())
        print(f"--- {name}: " + " / ".join(re.split(r"[\r\n]+", text)), flush=True)
        self.picture(name, box)
        self.driver.close_box("horalink", box)
        return text

    def held_clock(self):
        """What the dialog holds, in the form in which the box shows the exchange's clock."""
        hour, minute, second, half = (self.driver.value(self.driver.find("horalink", name))
                                      for name in ("Hour", "Minute", "Second", "AM or PM"))
        hours = int(hour) % 12 + (12 if half == "PM" else 0)
        return self.driver.date("horalink"), hours * 3600 + int(minute) * 60 + int(second)

    def run(self):
        self.driver.window("horalink", DIALOG, seconds=30)
        self.picture("host", self.driver.window("switchdesk"))
        self.picture("dialog", self.driver.window("horalink", DIALOG))
        self.press(LOOKUP, "lookup")
        date, seconds = self.held_clock()
        self.press(UPDATE, "update")
        shown = self.press(LOOKUP, "second-lookup")
        self.picture("screen")
        return self.agrees(shown, date, seconds)

    @staticmethod
    def agrees(shown, date, seconds):
        """The exchange's clock runs on from what was set; by how long the lookup took, it may be ahead."""
        found = re.search(r"(\d{4}/\d\d/\d\d).*?(\d\d):(\d\d):(\d\d)", shown, re.S)
        if not found or found[1] != date:
            return False
        ahead = int(found[2]) * 3600 + int(found[3]) * 60 + int(found[4]) - seconds
        return 0 <= ahead % 86400 < 60


def demonstrate(arrangement, pictures):
    arrangement.start([arrangement.host, "--verbose", "--open", EXCHANGE])
    agreed = Demonstration(arrangement, pictures).run()
    print(f"--- pictures of every step: {pictures}")
    print("--- the second lookup shows the time that was set" if agreed
          else "--- the second lookup does not show the time that was set")
    return 0 if agreed else 1


def open_host(arrangement):
    return arrangement.start([arrangement.host, "--verbose", "--open", EXCHANGE]).wait()


def language_of_environment(build):
    names = next((value for value in map(os.environ.get, ("LC_ALL", "LC_MESSAGES", "LANG")) if value), "")
    language = names[:2]
    return language if language and (build / "data" / language / "Horalink.lng").exists() else "en"


def main(build, asked, way="", *rest):
    build = Path(build)
    arrangement = Arrangement(build, build / "installation", language=asked or language_of_environment(build))
    if asked:
        arrangement.speak()
    with arrangement.lay_out():
        if way == "stand-alone":
            return arrangement.start([arrangement.add_in, *rest]).wait()
        if way == "bus":
            return arrangement.start(rest).wait()
        if arrangement.own_display:
            return demonstrate(arrangement, build / "pictures")
        return open_host(arrangement)


if __name__ == "__main__":
    try:
        sys.exit(main(*sys.argv[1:]))
    except (TimeoutError, RuntimeError, OSError, subprocess.CalledProcessError) as error:
        sys.exit(f"run: {error}")
    except KeyboardInterrupt:
        sys.exit(130)
