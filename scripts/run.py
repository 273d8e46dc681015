"""What ./run does once everything is built."""
import contextlib
import os
import shutil
import signal
import subprocess
import sys
from pathlib import Path

import dbus

from sandbox import Sandbox

EXCHANGE = "Main Office"


def demonstrate(sandbox, pictures):
    for old in pictures.glob("*.png"):
        old.unlink()
    sandbox.start([sandbox.host, "--verbose", "--open", EXCHANGE])
    from demonstration import Demonstration
    good = Demonstration(sandbox, pictures, EXCHANGE).run()
    print(f"--- pictures of every step: {pictures}")
    return 0 if good else 1


def exchanges():
    """The simulated exchanges, and this PC if it has a clock service."""
    names = [EXCHANGE, "Warehouse", "Branch 3"]
    with contextlib.suppress(dbus.DBusException):
        if "org.freedesktop.timedate1" in dbus.SystemBus().list_activatable_names():
            names.append("This PC=local")
    return [word for name in names for word in ("--exchange", name)]


def open_host(sandbox):
    return sandbox.start([sandbox.host, "--verbose", "--open", EXCHANGE, *exchanges()]).wait()


def run_command(sandbox, command):
    if not shutil.which(command[0], path=sandbox.environment["PATH"]):
        if Path(command[0]).is_file():
            sys.exit(f"run: '{command[0]}' isn't executable; chmod +x makes it so")
        sys.exit(f"run: command '{command[0]}' not found")
    return sandbox.start(command).wait()


def language_of_environment(build):
    names = next((value for value in map(os.environ.get, ("LC_ALL", "LC_MESSAGES", "LANG")) if value), "")
    language = names[:2]
    return language if language and (build / "data" / language / "Horalink.lng").exists() else "en"


def main(build, asked, way="", *rest):
    build = Path(build)
    sandbox = Sandbox(build, build / "installation", language=asked or language_of_environment(build))
    if asked:
        sandbox.speak()
    if way and sandbox.own_display:
        print("run: no display found, so windows open on an invisible virtual one; Ctrl+C ends it",
              file=sys.stderr)
    with sandbox.lay_out():
        if way == "stand-alone":
            return sandbox.start([sandbox.add_in, *rest]).wait()
        if way == "bus":
            return run_command(sandbox, rest)
        if sandbox.own_display:
            return demonstrate(sandbox, build / "pictures")
        return open_host(sandbox)


if __name__ == "__main__":
    # SIGTERM must also end the sandbox, and with it all programs started there.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    try:
        sys.exit(main(*sys.argv[1:]))
    except (TimeoutError, RuntimeError, OSError, subprocess.CalledProcessError) as error:
        sys.exit(f"run: {error}")
    except KeyboardInterrupt:
        sys.exit(130)
