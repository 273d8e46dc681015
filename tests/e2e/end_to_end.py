"""What all end-to-end tests stand on: a stage for each module, and the companion host with its log.

HORALINK_BUILD names the build folder.
"""
import os
import re
import sqlite3
import subprocess
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts"))
import host  # noqa: E402
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


class OwnHostTest(stage.EndToEndTest):
    """With hosts of the test's own, and the end of the add-in's process to be seen."""

    @property
    def address(self):
        return stage.arrangement.environment["DBUS_SESSION_BUS_ADDRESS"]

    def join(self, address=None):
        self.clients.append(host.Host(address or self.address))
        return self.clients[-1]

    def start_add_in(self):
        add_in = self.start([stage.arrangement.add_in, "-Embedding"])
        self.wait_for(lambda: stage.bus.name_has_owner(stage.ADD_IN_CLASS), "the add-in to serve its class")
        return add_in


class Host:
    """The companion host, with the add-in open and every call that it sees in a log."""

    number = 0
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
        self.mark = len(self.all_lines())
        return self

    def all_lines(self):
        try:
            return self.log.read_text(encoding="utf-8").splitlines()
        except FileNotFoundError:
            return []

    def lines(self):
        return self.all_lines()[self.mark:]

    def wait_for_line(self, start, count=1):
        """Waits for a line with this start, the `count`th of them."""
        self.test.wait_for(lambda: sum(line.startswith(start) for line in self.lines()) >= count,
                           f"'{start}' in {self.log.name}")

    def calls(self):
        """The calls of the host object and the exchange object, without what was read of an answer."""
        return [member for line in self.lines() if (member := re.split(r"[ (]", line)[0]) in stage.GOOD]

    def close_add_in(self):
        """By the button of its window."""
        window = f"Switchdesk \u2013 {self.exchange}"
        stage.driver.raise_window(window)
        stage.driver.click(stage.driver.find(SWITCHDESK, "Close add-in", Role.PUSH_BUTTON, window=window))


def run(command, seconds=LIMIT, **options):
    """Runs a program to its end and catches what it prints."""
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=seconds,
                          check=False, env=options.pop("environment", stage.arrangement.environment), **options)
