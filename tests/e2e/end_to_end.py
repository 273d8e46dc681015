"""What all end-to-end tests stand on: a stage for each module, and the companion host with its log.

HORALINK_BUILD names the build folder.
"""
import os
import sqlite3
import subprocess
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts"))
import stage  # noqa: E402
from arrangement import Arrangement  # noqa: E402
from driver import LIMIT, Driver, Role  # noqa: E402
from stage import EXCHANGE, SWITCHDESK  # noqa: E402

BUILD = Path(os.environ["HORALINK_BUILD"])


# In a long run, the share of this process in all cases, as "1/2"; and the one case that is wanted.
SHARE, ONLY = os.environ.get("HORALINK_SHARE"), os.environ.get("HORALINK_ONLY")


def chosen(sample, every):
    """The cases to go through, of which each is a row of words."""
    if ONLY:
        return [next(case for case in every if "/".join(map(str, case)) == ONLY)]
    first, _, step = (SHARE or "").partition("/")
    return list(every)[int(first) - 1::int(step)] if SHARE else sample


def open_stage(starts_by_itself=True):
    """Serves a module as its setUpModule."""
    folder = BUILD / "tests/e2e" / f"{Path(sys.argv[0]).stem}{(SHARE or '').replace('/', '-of-')}"
    arrangement = Arrangement(BUILD, folder, own_display=True).lay_out()
    if not starts_by_itself:
        (arrangement.folder / f"services/{stage.ADD_IN_CLASS}.service").unlink()
    arrangement.__enter__()
    unittest.addModuleCleanup(arrangement.__exit__)
    stage.take(arrangement, Driver(arrangement))
    unittest.addModuleCleanup(stage.bus.close)


def open_own_stage():
    """One in which the test starts the add-in, so that it sees the end of the process."""
    open_stage(starts_by_itself=False)


def database_file(name):
    return next(stage.arrangement.root.glob(f"*/DATABASE/{name}"))


def change_database(name, *statements):
    """Changes a database of the installation, before the add-in is started."""
    database = sqlite3.connect(database_file(name))
    with database:
        for statement in statements:
            database.execute(statement)
    database.close()


class Host:
    """The companion host, with the add-in open and every call that it sees in a log."""

    number = 0
    MEMBERS = ("oPBX", "Login", "SendRequest", "LogOut", "ShowMessage", "ShowResults", "ShowCode")

    def __init__(self, test, *options, exchange=EXCHANGE, environment=None):
        Host.number += 1
        self.log = stage.arrangement.folder / f"host-{Host.number}.log"
        opening = ["--open", exchange] if exchange else []
        self.process = test.start([stage.arrangement.host, "--log", self.log, *opening, *options], environment=environment)
        self.test, self.exchange = test, exchange
        self.mark = 0

    def open(self):
        """Waits until the dialog is up and everything about it is logged; `calls` counts from here."""
        self.wait_for_line("# Visible is written")
        self.test.dialog(self.exchange)
        self.skip()
        return self

    def all_lines(self):
        try:
            return self.log.read_text(encoding="utf-8").splitlines()
        except FileNotFoundError:
            return []

    def lines(self):
        return self.all_lines()[self.mark:]

    def skip(self):
        self.mark = len(self.all_lines())

    def wait_for_line(self, start, count=1):
        """Waits for a line with this start, the `count`th of them."""
        self.test.wait_for(lambda: sum(line.startswith(start) for line in self.lines()) >= count,
                           f"'{start}' in {self.log.name}")

    def exchange_lines(self):
        """The calls of the host object and the exchange object, without what was read of an answer."""
        return [line for line in self.lines() if line.split("(")[0].split(" ")[0] in self.MEMBERS]

    def calls(self):
        return [line.split("(")[0].split(" ")[0] for line in self.exchange_lines()]

    def told(self):
        """The texts and codes that came by ShowMessage and ShowCode."""
        return [line.partition("(")[2].rpartition(") -> ")[0] for line in self.exchange_lines()
                if line.startswith(("ShowMessage(", "ShowCode("))]

    def close_add_in(self):
        """By the button of its window."""
        window = f"Switchdesk \u2013 {self.exchange}"
        stage.driver.raise_window(window)
        stage.driver.click(stage.driver.find(SWITCHDESK, "Close add-in", Role.PUSH_BUTTON, window=window))

    def kill(self):
        self.process.kill()
        self.process.wait()


def run(command, seconds=LIMIT, **options):
    """Runs a program to its end and catches what it prints."""
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=seconds,
                          check=False, env=options.pop("environment", stage.arrangement.environment), **options)
