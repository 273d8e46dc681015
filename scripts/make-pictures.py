"""Takes the pictures of the manuals: the dialog, the answer to a lookup, and the host that was told of it."""
import re
import subprocess
import sys
from pathlib import Path

from arrangement import Arrangement, wait_for
from run import DIALOG, EXCHANGE, LOOKUP

HOST = f"Switchdesk \u2013 {EXCHANGE}"


def take(pictures, name, window):
    """A picture of one window with its frame, of which no other window may cover a part."""
    title = "^" + re.escape(window.get_name()) + "$"
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title],
                           check=True, capture_output=True, text=True)
    subprocess.run(["import", "-silent", "-frame", "-window", found.stdout.split()[0], "-strip",
                    str(pictures / f"{name}.png")], check=True)


def take_pictures(arrangement, pictures):
    from driver import Driver
    driver = Driver(arrangement)
    arrangement.start([arrangement.host, "--open", EXCHANGE])
    driver.window("switchdesk", HOST, seconds=30)
    take(pictures, "dialog", driver.window("horalink", DIALOG, seconds=30))
    driver.click(driver.find("horalink", LOOKUP))
    box = driver.box("horalink", besides=[DIALOG])
    take(pictures, "answer", box)
    driver.close_box("horalink", box)
    # The dialog lies on top of the host; its own button hides it.
    driver.click(driver.find("horalink", "Close this window"))
    wait_for(lambda: not driver.has_window("horalink", DIALOG), 10, "the dialog to hide")
    take(pictures, "host", driver.window("switchdesk", HOST))


def main(build, pictures):
    build = Path(build)
    with Arrangement(build, build / "pictures-installation", own_display=True).lay_out() as arrangement:
        take_pictures(arrangement, Path(pictures))


if __name__ == "__main__":
    main(*sys.argv[1:])
