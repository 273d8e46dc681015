"""Takes the pictures of the manuals: the dialog in three languages, and the host with its messages."""
import subprocess
import sys
from pathlib import Path

from sandbox import Sandbox, wait_for
from run import EXCHANGE
from texts import Texts

HOST = f"Switchdesk \u2013 {EXCHANGE}"
LANGUAGES = ("en", "de", "ja")


def take(file, window):
    """Takes a picture of a window with its frame. No other window may cover any part of it."""
    from driver import name_pattern
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", name_pattern(window.get_name())],
                           check=True, capture_output=True, text=True)
    subprocess.run(["import", "-silent", "-frame", "-window", found.stdout.split()[0], "-strip", str(file)], check=True)


def take_pictures(sandbox, pictures, language):
    from driver import Driver, Role
    driver, texts = Driver(sandbox), Texts(sandbox)
    dialog = texts.title(EXCHANGE)
    ending = "" if language == "en" else f"-{language}"
    sandbox.start([sandbox.host, "--open", EXCHANGE])
    driver.window("switchdesk", HOST, seconds=30)
    take(pictures / f"dialog{ending}.png", driver.window("horalink", dialog, seconds=30))
    if language != "en":
        return
    driver.click(driver.find("horalink", texts.lookup, Role.PUSH_BUTTON))
    driver.close_box("horalink", driver.box("horalink", besides=[dialog]))
    # The dialog lies on top of the host; its own button hides it.
    driver.click(driver.find("horalink", texts.hide, Role.PUSH_BUTTON))
    wait_for(lambda: not driver.has_window("horalink", dialog), 10, "the dialog to hide")
    take(pictures / "host.png", driver.window("switchdesk", HOST))


def main(build, pictures, language=None):
    if not language:  # the accessibility library can connect only once in a process
        for each in LANGUAGES:
            subprocess.run([sys.executable, __file__, build, pictures, each], check=True)
        return
    folder = Path(build) / "pictures-installation"
    with Sandbox(build, folder, own_display=True, language=language).lay_out() as sandbox:
        take_pictures(sandbox, Path(pictures), language)


if __name__ == "__main__":
    main(*sys.argv[1:])
