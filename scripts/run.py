"""What ./run does once everything is built."""
import os
import signal
import subprocess
import sys
from pathlib import Path

from arrangement import Arrangement

EXCHANGE = "Main Office"


def demonstrate(arrangement, pictures):
    arrangement.start([arrangement.host, "--verbose", "--open", EXCHANGE])
    from demonstration import Demonstration
    good = Demonstration(arrangement, pictures, EXCHANGE).run()
    print(f"--- pictures of every step: {pictures}")
    return 0 if good else 1


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
    # What was started ends with the arrangement, however this one is ended.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    try:
        sys.exit(main(*sys.argv[1:]))
    except (TimeoutError, RuntimeError, OSError, subprocess.CalledProcessError) as error:
        sys.exit(f"run: {error}")
    except KeyboardInterrupt:
        sys.exit(130)
