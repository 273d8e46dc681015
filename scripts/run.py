"""What ./run does once everything is built."""
import contextlib
import os
import shutil
import signal
import subprocess
import sys
from pathlib import Path

import dbus

from arrangement import Arrangement

EXCHANGE = "Main Office"


def demonstrate(arrangement, pictures):
    for old in pictures.glob("*.png"):
        old.unlink()
    arrangement.start([arrangement.host, "--verbose", "--open", EXCHANGE])
    from demonstration import Demonstration
    good = Demonstration(arrangement, pictures, EXCHANGE).run()
    print(f"--- pictures of every step: {pictures}")
    return 0 if good else 1


def exchanges():
    """The simulated ones, and this PC where its clock service can be asked."""
    names = [EXCHANGE, "Warehouse", "Branch 3"]
    with contextlib.suppress(dbus.DBusException):
        if "org.freedesktop.timedate1" in dbus.SystemBus().list_activatable_names():
            names.append("This PC=local")
    return [word for name in names for word in ("--exchange", name)]


def open_host(arrangement):
    return arrangement.start([arrangement.host, "--verbose", "--open", EXCHANGE, *exchanges()]).wait()


def run_command(arrangement, command):
    if not shutil.which(command[0], path=arrangement.environment["PATH"]):
        if Path(command[0]).is_file():
            sys.exit(f"run: '{command[0]}' can't be run; chmod +x makes it a command")
        sys.exit(f"run: there is no command '{command[0]}'")
    return arrangement.start(command).wait()


def language_of_environment(build):
    names = next((value for value in map(os.environ.get, ("LC_ALL", "LC_MESSAGES", "LANG")) if value), "")
    language = names[:2]
    return language if language and (build / "data" / language / "Horalink.lng").exists() else "en"


def main(build, asked, way="", *rest):
    build = Path(build)
    arrangement = Arrangement(build, build / "installation", language=asked or language_of_environment(build))
    if asked:
        arrangement.speak()
    if way and arrangement.own_display:
        print("run: there is no display, so windows open on a virtual one that nobody sees; Ctrl+C ends it",
              file=sys.stderr)
    with arrangement.lay_out():
        if way == "stand-alone":
            return arrangement.start([arrangement.add_in, *rest]).wait()
        if way == "bus":
            return run_command(arrangement, rest)
        if arrangement.own_display:
            return demonstrate(arrangement, build / "pictures")
        return open_host(arrangement)


if __name__ == "__main__":
    # What was started ends with the arrangement, however this one is ended.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    try:
        sys.exit(main(*sys.argv[1:]))
    except (TimeoutError, RuntimeError, OSError, subprocess.CalledProcessError) as error:
        sys.exit(f"run: {error}")
    except KeyboardInterrupt:
        sys.exit(130)
